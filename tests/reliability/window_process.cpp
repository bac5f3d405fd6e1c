// The real program with a user inside it: the process that the reliability scripts start, close and kill.
#include "app/case_road.h"
#include "app/main_window.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <thread>

using road::pick;
using road::type;

namespace {

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

/// A lid-driven cavity by the windows, from the mesh file to the run, and the ways to part with it.
class User : public QObject {
public:
    explicit User(const QStringList& arguments)
        : m_action(arguments.value(1)), m_mesh(arguments.value(2)), m_file(arguments.value(3)),
          m_steps(arguments.value(4)), m_interval(arguments.value(5)), m_delay(arguments.value(6).toInt()) {}

    void begin() {
        if (m_action == "idle")
            close();
        else if (m_action == "lines")
            sayManyLines();
        else
            prepareAndCompute();
    }

private:
    template <class T>
    static T* find(const char* name) {
        return mainWindow->findChild<T*>(QString::fromLatin1(name));
    }
    static void choose(const char* action) { find<QAction>(action)->trigger(); }
    static QString paneText() { return find<QTextBrowser>("textBrowser")->toPlainText(); }

    void prepareAndCompute() {
        // Deliberate: a velocity or mesh file that may not be written counts as one that cannot be opened.
        const QString velocities = m_folder.filePath("nine.2Dv");
        if (!writeText(velocities, velocityLines))
            qFatal("no temporary folder");
        m_answers.names = QStringList{velocities, m_mesh};
        choose("actionOpen");
        Shell::press(Shell::dialog("Dimension_Win"), "pushButton_2D");
        if (!fluvane::caseSettings.meshLoaded)
            qFatal("the case was not opened");
        setUp();
        setWalls();
        find<QTextBrowser>("textBrowser")->clear();
        compute();
        connect(&m_watch, &QTimer::timeout, this, [this] { watch(); });
        m_watch.start(5);
    }

    void setUp() {
        choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        QWidget* const physics = Shell::dialog("Initial_Win");
        pick(physics, "comboBox_flow", 0);
        pick(physics, "comboBox_time", m_action == "transient" ? 1 : 0);
        type(physics, "lineEdit_L", "1");
        type(physics, "lineEdit_Re_or_Ra", "100");
        type(physics, "lineEdit_Pr", "1");
        Shell::press(physics, "pushButton_ok");
    }

    static void setWalls() {
        choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (int zone = 0; zone < fluvane::mesh.zoneCount; ++zone)
            Shell::press(wizard, "pushButtonlast"); // a second walk begins where the first one ended
        for (int zone = 0; zone < fluvane::mesh.zoneCount; ++zone) {
            type(wizard, "lineEdit_ux", zone + 1 == fluvane::mesh.zoneCount ? "1" : "0");
            type(wizard, "lineEdit_uy", "0");
            Shell::press(wizard, "pushButtonnext");
        }
    }

    void compute() {
        m_answers.names = QStringList{m_file};
        find<QPushButton>("pushButton_compute")->click();
        QWidget* const control = Shell::dialog("NUM_Process_Win");
        type(control, "lineEdit_Process", "2");
        type(control, "lineEdit_Time_Step", m_steps);
        type(control, "lineEdit_Terminal", m_interval);
        type(control, "lineEdit_Error_U", "0");
        type(control, "lineEdit_Error_T", "0");
        Shell::press(control, "pushButton_ok");
        say("running");
    }

    /// Waits for the end of a run that has one, else for its first line.
    void watch() {
        if (m_action == "run") {
            if (fluvane::runActive() || !paneText().contains("time="))
                return;
            say(paneText());
            close();
        } else if (!paneText().isEmpty()) {
            m_watch.stop();
            if (m_action == "pauses")
                measurePauses();
            else
                QTimer::singleShot(m_delay, this, [this] { close(); });
        }
    }

    void close() {
        m_watch.stop();
        say(fluvane::runActive() ? "closing during a run" : "closing");
        mainWindow->close();
    }

    // --- pauses ------------------------------------------------------------------------------------------

    /// The longest time during `what` in which the event loop did not come round.
    void measure(const QString& name, const std::function<void()>& what) {
        m_longest = 0;
        m_since.restart();
        what();
        m_longest = std::max(m_longest, m_since.nsecsElapsed());
        say(QStringLiteral("pause %1 %2").arg(name).arg(double(m_longest) / 1e6, 0, 'f', 1));
    }

    static void wait(int milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }

    void measurePauses() {
        QTimer tick;
        connect(&tick, &QTimer::timeout, this, [this] {
            m_longest = std::max(m_longest, m_since.nsecsElapsed());
            m_since.restart();
        });
        tick.start(1);
        measure("watching", [this] { wait(m_delay); });
        measure("gate", [] { const fluvane::VisitorHold hold; });
        measure("saving", [this] {
            m_answers.names = QStringList{m_file + ".saved"};
            choose("actionSave");
        });
        for (const char* const dump : {"actionCell", "actionFace", "actionPoint"})
            measure(dump, [dump] { choose(dump); });
        measure("lattice_and_physics", [this] { setUp(); });
        measure("walls", [] { setWalls(); });
        close();
    }

    // --- lines -------------------------------------------------------------------------------------------

    static long kilobytes() {
        QFile statm(QStringLiteral("/proc/self/statm"));
        return statm.open(QIODevice::ReadOnly) ? statm.readAll().split(' ').value(1).toLong() * 4 : 0;
    }

    /// As many lines as given, as fast as another thread can say them, in ten parts.
    void sayManyLines() {
        constexpr int parts = 10;
        const int lines = m_mesh.toInt();
        for (int part = 0; part < parts; ++part) {
            std::atomic<bool> done{false};
            std::thread speaker([&] {
                for (int i = 0; i < lines / parts; ++i)
                    fluvane::appendTerminalLine(
                        QStringLiteral("Time Steps=%1   error_u=1.23456e-05   error_T=0").arg(i));
                done = true;
            });
            while (!done)
                wait(1);
            speaker.join();
            wait(1);
            say(QStringLiteral("memory %1 %2").arg((part + 1) * (lines / parts)).arg(kilobytes()));
        }
        close();
    }

    QString m_action, m_mesh, m_file, m_steps, m_interval;
    int m_delay;
    QTemporaryDir m_folder;
    ModalAnswers m_answers;
    QTimer m_watch;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
};

/// Called while the application object is made, before the program makes its window.
void meetTheUser() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            auto* const user = new User(QCoreApplication::arguments());
            user->setParent(qApp);
            user->begin();
        },
        Qt::QueuedConnection);
}
Q_COREAPP_STARTUP_FUNCTION(meetTheUser)

} // namespace
