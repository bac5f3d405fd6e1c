// Start-up: the application object and its one main window.
#include "app/main_window.h"
#include "mesh/run_gate.h"

#include <QApplication>
#include <QIcon>
#include <QThreadPool>
#include <csignal>

namespace {

/// A file at its size limit or a pipe without a reader is a failed write like any other, not the end of the
/// process.
void surviveFailedWrites() {
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

} // namespace

int main(int argc, char* argv[]) {
    surviveFailedWrites();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QApplication application(argc, argv);
    // The name of the installed menu entry: it tells window managers whose window this is.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.fluvane.Fluvane"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.fluvane.Fluvane")));
    mainWindow = new MainWindow;
    mainWindow->show();
    const int code = QApplication::exec();
    // The run's last file must be whole before the process goes.
    fluvane::requestStop();
    QThreadPool::globalInstance()->waitForDone();
    return code;
}
