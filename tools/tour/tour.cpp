// A guided tour: takes the lid-driven cavity through the real windows as a user would and leaves a picture of
// each window and the results in a folder.
#include "app/main_window.h"
#include "dialogs/case_settings.h"
#include "mesh/run_gate.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTest>
#include <QTextBrowser>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <cstdio>
#include <stdexcept>

namespace {

/// What stops the tour: the reason is printed.
struct Stumble : std::runtime_error {
    explicit Stumble(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

void expect(bool condition, const QString& reason) {
    if (!condition)
        throw Stumble(reason);
}

template <class T>
T* part(const QObject* owner, const char* name) {
    T* const found = owner->findChild<T*>(QString::fromLatin1(name));
    expect(found != nullptr, QStringLiteral("no %1 in %2").arg(name, owner->metaObject()->className()));
    return found;
}

class Tour {
public:
    Tour(const QString& casesFolder, const QString& outputFolder)
        : m_cases(casesFolder), m_output(outputFolder) {
        m_poll.setInterval(50);
        QObject::connect(&m_poll, &QTimer::timeout, qApp, [this] { answer(); });
        m_poll.start();
    }

    void walk() {
        window().show();
        picture(window(), "main-empty");
        showMenus();
        readHelp();
        openCase();
        setLattice();
        setBoundaries();
        compute();
        save();
        expect(m_trouble.isEmpty(), m_trouble);
    }

    int pictures() const { return m_pictures; }
    QString resultFolder() const { return m_output.absoluteFilePath(QStringLiteral("results")); }

private:
    MainWindow& window() { return *mainWindow; }

    QWidget& dialog(const char* className) {
        const QWidgetList all = QApplication::topLevelWidgets();
        for (QWidget* const widget : all)
            if (qstrcmp(widget->metaObject()->className(), className) == 0) {
                expect(QTest::qWaitForWindowExposed(widget),
                       QStringLiteral("%1 is not shown").arg(className));
                return *widget;
            }
        throw Stumble(QStringLiteral("no window %1").arg(className));
    }

    void picture(QWidget& widget, const QString& name) {
        QApplication::processEvents();
        ++m_pictures;
        const QString file = QStringLiteral("%1-%2.png").arg(m_pictures, 2, 10, QChar('0')).arg(name);
        if (!widget.grab().save(m_output.filePath(file)))
            m_trouble = QStringLiteral("cannot write ") + m_output.filePath(file);
    }

    void press(QWidget& widget, const char* button) {
        QTest::mouseClick(part<QAbstractButton>(&widget, button), Qt::LeftButton);
    }

    void choose(const char* action) { part<QAction>(&window(), action)->trigger(); }

    void type(QWidget& widget, const char* field, const QString& text) {
        auto* const edit = part<QLineEdit>(&widget, field);
        edit->selectAll();
        QTest::keyClicks(edit, text);
    }

    /// Answers whatever modal window is up: boxes by their button, file dialogs by the next prepared name.
    /// Runs inside the dialog's event loop, so trouble is only noted here.
    void answer() {
        QWidget* const modal = QApplication::activeModalWidget();
        if (m_answering || !modal || !modal->isVisible())
            return;
        const QScopedValueRollback<bool> answering(m_answering, true);
        if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
            std::printf("  box \"%s\": %s\n", qPrintable(box->windowTitle()), qPrintable(box->text()));
            if (box->text() != QStringLiteral("Save Succeed"))
                m_trouble = box->text();
            picture(*box, QStringLiteral("box"));
            box->buttons().constFirst()->click();
        } else if (auto* const files = qobject_cast<QFileDialog*>(modal)) {
            if (m_names.isEmpty()) {
                m_trouble = QStringLiteral("asked for one file too many: ") + files->windowTitle();
                files->reject();
                return;
            }
            auto* const edit = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            const QFileInfo wanted(m_names.takeFirst());
            files->setDirectory(wanted.path());
            edit->setText(wanted.fileName());
            QTest::qWait(200); // the list of files is filled by another thread
            picture(*files, files->windowTitle().toLower().replace(' ', '-'));
            QTest::keyClick(edit, Qt::Key_Return);
        }
    }

    void showMenus() {
        for (const char* const name : {"File", "Initial", "menuOuput_Test", "menuHelp"}) {
            auto* const menu = part<QMenu>(&window(), name);
            const auto* const bar = part<QMenuBar>(&window(), "menubar");
            menu->popup(bar->mapToGlobal(bar->actionGeometry(menu->menuAction()).bottomLeft()));
            picture(*menu, QStringLiteral("menu-") + name);
            menu->close();
        }
    }

    void readHelp() {
        choose("actionHelp");
        QWidget& help = dialog("HELP_Win");
        picture(help, "help");
        press(help, "pushButton_ok");
        choose("actionVersion");
        QWidget& version = dialog("Version_Win");
        picture(version, "version");
        press(version, "pushButton_ok");
    }

    void openCase() {
        m_names =
            QStringList{m_cases.filePath("Velocity_file/D2Q9.2Dv"), m_cases.filePath("cavity/cavity_32.msh")};
        choose("actionOpen");
        QWidget& dimension = dialog("Dimension_Win");
        picture(dimension, "dimension");
        press(dimension, "pushButton_2D");
        expect(fluvane::caseSettings.meshLoaded, QStringLiteral("the sample mesh was not read"));
        picture(window(), "main-mesh");
    }

    void setLattice() {
        choose("actionLattice");
        QWidget& lattice = dialog("Lattice_Win");
        picture(lattice, "lattice");
        press(lattice, "pushButton_ok");
        QWidget& physics = dialog("Initial_Win");
        picture(physics, "physics");
        visitPhaseChange(physics);
        type(physics, "lineEdit_L", QStringLiteral("1"));
        type(physics, "lineEdit_Re_or_Ra", QStringLiteral("100"));
        picture(physics, "physics-cavity");
        press(physics, "pushButton_ok");
        expect(fluvane::caseSettings.latticeInitialised, QStringLiteral("the physics was not taken"));
        picture(window(), "main-lattice");
    }

    void visitPhaseChange(QWidget& physics) {
        auto* const phase = part<QComboBox>(&physics, "comboBox_Phase_change");
        phase->setCurrentIndex(1);
        picture(physics, "physics-phase-change");
        press(physics, "pushButton_phase_change");
        QWidget& solidLiquid = dialog("Solid_liquid");
        picture(solidLiquid, "solid-liquid");
        press(solidLiquid, "pushButton_cancel");
        phase->setCurrentIndex(0);
        part<QComboBox>(&physics, "comboBox_heat_transfer")->setCurrentIndex(0);
    }

    void setBoundaries() {
        choose("actionBoundary");
        QWidget& wizard = dialog("Boundary_Information_Win");
        for (int zone = 0; zone < 100 && !fluvane::caseSettings.boundaryInitialised; ++zone) {
            const bool lid = part<QLabel>(&wizard, "labelBI")->text().contains(QStringLiteral("lid"));
            type(wizard, "lineEdit_ux", lid ? QStringLiteral("1") : QStringLiteral("0"));
            type(wizard, "lineEdit_uy", QStringLiteral("0"));
            picture(wizard, QStringLiteral("boundary-%1").arg(zone));
            press(wizard, "pushButtonnext");
        }
        expect(fluvane::caseSettings.boundaryInitialised, QStringLiteral("the boundaries were not taken"));
    }

    void compute() {
        m_names = QStringList{m_output.absoluteFilePath("results/cavity.dat")};
        press(window(), "pushButton_compute");
        QWidget& control = dialog("NUM_Process_Win");
        picture(control, "run-control-defaults");
        type(control, "lineEdit_Process", QString::number(QThread::idealThreadCount()));
        type(control, "lineEdit_Time_Step", QStringLiteral("0")); // until it has converged
        type(control, "lineEdit_Terminal", QStringLiteral("1000"));
        picture(control, "run-control");
        press(control, "pushButton_ok");
        QElapsedTimer time;
        time.start();
        expect(QTest::qWaitFor([] { return !fluvane::runActive(); }, 600000), "the run did not end");
        expect(QTest::qWaitFor(
                   [this] {
                       return part<QTextBrowser>(&window(), "textBrowser")
                           ->toPlainText()
                           .contains("Compute done");
                   },
                   5000),
               QStringLiteral("the run did not end normally"));
        std::printf("  the run took %.1f s\n", static_cast<double>(time.elapsed()) / 1000.0);
        picture(window(), "main-done");
    }

    void save() {
        m_names = QStringList{m_output.absoluteFilePath("results/saved.dat")};
        choose("actionSave");
        expect(QFile::exists(m_output.filePath("results/saved.dat")), QStringLiteral("nothing was saved"));
    }

    QDir m_cases;
    QDir m_output;
    QTimer m_poll;
    QStringList m_names;
    QString m_trouble;
    bool m_answering = false;
    int m_pictures = 0;
};

} // namespace

int main(int argc, char* argv[]) {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: %s CASES_FOLDER OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    QDir output(arguments.at(2));
    output.removeRecursively();
    if (!output.mkpath(QStringLiteral("results"))) {
        std::fprintf(stderr, "cannot make the folder %s\n", qPrintable(output.path()));
        return 1;
    }
    const QString outputFolder = output.absolutePath();
    const QString casesFolder = QDir(arguments.at(1)).absolutePath();
    QDir::setCurrent(casesFolder);
    mainWindow = new MainWindow;
    int code = 0;
    try {
        Tour tour(casesFolder, outputFolder);
        tour.walk();
        std::printf("%d pictures: %s\nresults: %s\n", tour.pictures(), qPrintable(outputFolder),
                    qPrintable(tour.resultFolder()));
    } catch (const Stumble& stumble) {
        std::fprintf(stderr, "the tour stopped: %s\n", stumble.what());
        code = 1;
    }
    fluvane::requestStop();
    QThreadPool::globalInstance()->waitForDone();
    return code;
}
