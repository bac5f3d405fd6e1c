// What a window test wants of the platform: settings of its own, and silence about sizes.
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QString>
#include <QTemporaryDir>

namespace {

/// File dialogs keep their history in a file that all programs of a user share and lock: the tests that run
/// at the same time would wait for each other, and the developer would find their folders in it.
void keepSettingsApart() {
    static const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
}

QtMessageHandler testHandler = nullptr;

/// The offscreen platform says one line of every window with a fixed size. Whatever else is said is worth
/// reading, and would be lost among hundreds of these.
void leaveOutSizeHints(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (testHandler && text != QLatin1String("This plugin does not support propagateSizeHints()"))
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

void prepare() {
    keepSettingsApart();
    QCoreApplication* const app = QCoreApplication::instance();
    app->installEventFilter(new FirstWindow(app));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(prepare)
