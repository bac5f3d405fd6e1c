// Tests of the way from a terminal line to the pane.
#include "app/terminal_feed.h"

#include "output/terminal.h"
#include "patience.h"

#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <thread>
#include <vector>

using fluvane::appendTerminalLine;

class TerminalFeedTest : public QObject {
    Q_OBJECT

private:
    static QStringList linesOf(const QTextBrowser& pane) { return pane.toPlainText().split('\n'); }

private slots:
    void aLineOfThePanesThreadIsThereAtOnce() {
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        appendTerminalLine("one");
        appendTerminalLine("two");
        QCOMPARE(pane.toPlainText(), QString("one\ntwo"));
    }

    void linesOfAnotherThreadWaitForTheEventLoop() {
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        std::thread([] { appendTerminalLine("far"); }).join();
        QVERIFY(pane.toPlainText().isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(pane.toPlainText(), QString("far"));
    }

    void aLineOfThePanesThreadComesAfterWhatOthersSaidBefore() {
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        std::thread([] { appendTerminalLine("first"); }).join();
        appendTerminalLine("second");
        QCOMPARE(pane.toPlainText(), QString("first\nsecond"));
        QCoreApplication::processEvents();
        QCOMPARE(pane.toPlainText(), QString("first\nsecond"));
    }

    void nothingIsLostAndEveryThreadKeepsItsOrder() {
        constexpr int threads = 4;
        constexpr int lines = 500;
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        std::vector<std::thread> speakers;
        for (int t = 0; t < threads; ++t)
            speakers.emplace_back([t] {
                for (int i = 0; i < lines; ++i)
                    appendTerminalLine(QString("%1 %2").arg(t).arg(i));
            });
        for (int i = 0; i < 50; ++i)
            QCoreApplication::processEvents();
        for (std::thread& speaker : speakers)
            speaker.join();
        QTRY_COMPARE_WITH_TIMEOUT(linesOf(pane).size(), threads * lines, patience);
        std::vector<int> next(threads, 0);
        for (const QString& line : linesOf(pane)) {
            const QStringList words = line.split(' ');
            QCOMPARE(words.at(1).toInt(), next[std::size_t(words.at(0).toInt())]++);
        }
    }

    void markupIsShownAsItStands() {
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        appendTerminalLine("<b>bold</b>   &lt;");
        QCOMPARE(pane.toPlainText(), QString("<b>bold</b>   &lt;"));
    }

    void clearingTakesLinesAlongThatWereOnTheirWay() {
        QTextBrowser pane;
        TerminalFeed feed(&pane);
        std::thread([] { appendTerminalLine("old"); }).join();
        feed.clear();
        appendTerminalLine("new");
        QCoreApplication::processEvents();
        QCOMPARE(pane.toPlainText(), QString("new"));
    }

    void followsTheEndUnlessTheUserScrolledUp() {
        QTextBrowser pane;
        pane.resize(200, 100);
        pane.show();
        const TerminalFeed feed(&pane);
        for (int i = 0; i < 100; ++i)
            appendTerminalLine(QString::number(i));
        QScrollBar* const bar = pane.verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
        bar->setValue(3);
        appendTerminalLine("more");
        QCOMPARE(bar->value(), 3);
    }

    void ofEndlessLinesTheLastOnesStay_data() {
        QTest::addColumn<int>("between"); ///< lines between two turns of the event loop
        QTest::newRow("shown as they come") << 1000;
        QTest::newRow("said while the window is busy") << 3 * TerminalFeed::maxLines;
    }
    void ofEndlessLinesTheLastOnesStay() {
        QFETCH(int, between);
        constexpr int lines = 3 * TerminalFeed::maxLines;
        QTextBrowser pane;
        const TerminalFeed feed(&pane);
        for (int said = 0; said < lines; said += between) {
            std::thread([=] {
                for (int i = said; i < said + between; ++i)
                    appendTerminalLine(QString::number(i));
            }).join();
            QCoreApplication::processEvents();
        }
        const QStringList shown = linesOf(pane);
        QCOMPARE(shown.size(), TerminalFeed::maxLines);
        QCOMPARE(shown.constFirst(), QString::number(lines - TerminalFeed::maxLines));
        QCOMPARE(shown.constLast(), QString::number(lines - 1));
    }

    void aFeedThatIsGoneReceivesNothing() {
        QTextBrowser pane;
        {
            const TerminalFeed feed(&pane);
            std::thread([] { appendTerminalLine("on its way"); }).join();
        }
        appendTerminalLine("to standard error");
        QCoreApplication::processEvents();
        QVERIFY(pane.toPlainText().isEmpty());
    }
};

QTEST_MAIN(TerminalFeedTest)
#include "terminal_feed_test.moc"
