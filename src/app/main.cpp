// Start-up: the application object and its one main window.
#include "app/main_window.h"
#include "mesh/run_gate.h"

#include <QApplication>
#include <QThreadPool>

int main(int argc, char* argv[]) {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QApplication application(argc, argv);
    mainWindow = new MainWindow;
    mainWindow->show();
    const int code = QApplication::exec();
    // The run's last file must be whole before the process goes.
    fluvane::requestStop();
    QThreadPool::globalInstance()->waitForDone();
    return code;
}
