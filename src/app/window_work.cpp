// A thread for the work and an event loop for the window.
#include "app/window_work.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QScopeGuard>
#include <exception>
#include <future>

bool doBesideWindow(const std::function<bool()>& work) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    try {
        QEventLoop loop;
        std::future<bool> result = std::async(std::launch::async, [&work, &loop] {
            const auto end =
                qScopeGuard([&loop] { QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection); });
            return work();
        });
        loop.exec(QEventLoop::ExcludeUserInputEvents);
        // The loop ends early when the program does; the file must be whole all the same.
        return result.get();
    } catch (const std::exception&) {
        return false;
    }
}
