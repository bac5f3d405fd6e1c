// Start-up: the application object and its one main window.
#include "app/main_window.h"
#include "mesh/run_gate.h"

#include <QApplication>
#include <QIcon>
#include <QThreadPool>

int main(int argc, char* argv[]) {
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
