// Tests of long work beside a window that goes on showing itself.
#include "app/window_work.h"

#include <QApplication>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrent>
#include <atomic>
#include <new>
#include <thread>

class WindowWorkTest : public QObject {
    Q_OBJECT

private slots:
    void returnsWhatTheWorkReturnsAndFalseWhenItThrows() {
        QVERIFY(doBesideWindow([] { return true; }));
        QVERIFY(!doBesideWindow([] { return false; }));
        QVERIFY(!doBesideWindow([]() -> bool { throw std::bad_alloc(); }));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void theEventLoopGoesRoundMeanwhileAndTheCursorWaits() {
        std::atomic<int> rounds{0};
        bool waiting = false;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            ++rounds;
            waiting = QGuiApplication::overrideCursor() != nullptr;
        });
        timer.start(1);
        // Would never end on the thread of the window.
        QVERIFY(doBesideWindow([&rounds] {
            while (rounds < 5)
                std::this_thread::yield();
            return QThread::currentThread() != qApp->thread();
        }));
        QVERIFY(waiting);
    }

    void aPoolThatIsBusyDoesNotHoldItUp() {
        std::atomic<bool> done{false};
        QThreadPool* const pool = QThreadPool::globalInstance();
        const auto after = qScopeGuard([&] {
            done = true;
            pool->waitForDone();
        });
        for (int i = 0; i < pool->maxThreadCount(); ++i)
            QtConcurrent::run([&done] {
                while (!done)
                    std::this_thread::yield();
            });
        QVERIFY(doBesideWindow([] { return true; }));
    }

    void theWorkIsCompleteWhenTheProgramEndsMeanwhile() {
        bool complete = false;
        QTimer::singleShot(0, qApp, [&complete] {
            QTimer::singleShot(1, qApp, &QCoreApplication::quit);
            doBesideWindow([&complete] {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                complete = true;
                return true;
            });
        });
        QCoreApplication::exec();
        QVERIFY(complete);
    }
};

QTEST_MAIN(WindowWorkTest)
#include "window_work_test.moc"
