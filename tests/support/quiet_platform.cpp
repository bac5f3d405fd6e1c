// Keeps out of the window tests' output what the offscreen platform says of every window with a fixed size.
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QString>

namespace {

QtMessageHandler testHandler = nullptr;

/// Whatever else is said is worth reading, and would be lost among hundreds of these.
void leaveOutSizeHints(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (text != QLatin1String("This plugin does not support propagateSizeHints()"))
        testHandler(type, context, text);
}

/// Qt Test takes the messages over after the application is made and before it shows a window.
class FirstWindow : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Polish) {
            QCoreApplication::instance()->removeEventFilter(this);
            testHandler = qInstallMessageHandler(leaveOutSizeHints);
        }
        return false;
    }
};

void awaitFirstWindow() {
    QCoreApplication* const app = QCoreApplication::instance();
    app->installEventFilter(new FirstWindow(app));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(awaitFirstWindow)
