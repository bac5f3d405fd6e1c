// A guided tour: takes a lid-driven cavity, plane or spatial, through the real windows as a user would and
// leaves a picture of each window and the results in a folder.
#include "app/main_window.h"
#include "dialogs/case_settings.h"
#include "mesh/run_gate.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
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
#include <algorithm>
#include <array>
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

/// What a case types and picks, as its README says.
struct TourCase {
    QString name;
    bool is3D;
    QString velocityFile;
    QString meshFile;
    QString CFL; ///< empty: as it stands
    QString L;
    QString Re;
    QStringList wallVelocity; ///< the fields of the wall velocity's components
};

const std::array<TourCase, 2> tourCases{{
    {"cavity", false, "Velocity_file/D2Q9.2Dv", "cavity/cavity_32.msh", {}, "1", "100", {"ux", "uy"}},
    {"cavity-3d",
     true,
     "Velocity_file/D3Q19.3Dv",
     "cavity-3d/cavity_3d_10.msh",
     "0.25",
     "10",
     "100",
     {"ux", "uy", "uz"}},
}};

class Tour {
public:
    Tour(const TourCase& tourCase, const QString& casesFolder, const QString& outputFolder)
        : m_case(tourCase), m_cases(casesFolder), m_output(outputFolder) {
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
        m_names = QStringList{m_cases.filePath(m_case.velocityFile), m_cases.filePath(m_case.meshFile)};
        choose("actionOpen");
        QWidget& dimension = dialog("Dimension_Win");
        picture(dimension, "dimension");
        press(dimension, m_case.is3D ? "pushButton_3D" : "pushButton_2D");
        expect(fluvane::caseSettings.meshLoaded, QStringLiteral("the sample mesh was not read"));
        picture(window(), "main-mesh");
    }

    void setLattice() {
        choose("actionLattice");
        QWidget& lattice = dialog("Lattice_Win");
        if (!m_case.CFL.isEmpty())
            type(lattice, "lineEdit_CFL", m_case.CFL);
        picture(lattice, "lattice");
        press(lattice, "pushButton_ok");
        QWidget& physics = dialog("Initial_Win");
        picture(physics, "physics");
        if (!m_case.is3D)
            visitPhaseChange(physics);
        part<QComboBox>(&physics, "comboBox_heat_transfer")->setCurrentIndex(0);
        type(physics, "lineEdit_L", m_case.L);
        type(physics, "lineEdit_Re_or_Ra", m_case.Re);
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
    }

    void setBoundaries() {
        choose("actionBoundary");
        QWidget& wizard = dialog(m_case.is3D ? "Boundary_Information_Win_3D" : "Boundary_Information_Win");
        for (int zone = 0; zone < 100 && !fluvane::caseSettings.boundaryInitialised; ++zone) {
            fillPage(wizard);
            picture(wizard, QStringLiteral("boundary-%1").arg(zone));
            if (zone == 1)
                lookBack(wizard);
            press(wizard, "pushButtonnext");
        }
        expect(fluvane::caseSettings.boundaryInitialised, QStringLiteral("the boundaries were not taken"));
    }

    /// The lid slides along x, the other walls are at rest.
    void fillPage(QWidget& wizard) {
        const bool lid = part<QLabel>(&wizard, "labelBI")->text().contains(QStringLiteral("lid"));
        for (const QString& component : m_case.wallVelocity)
            type(wizard, ("lineEdit_" + component).toLatin1().constData(),
                 lid && component == "ux" ? QStringLiteral("1") : QStringLiteral("0"));
    }

    /// One page back and forth; the page that was left is filled again.
    void lookBack(QWidget& wizard) {
        press(wizard, "pushButtonlast");
        picture(wizard, QStringLiteral("boundary-back"));
        fillPage(wizard);
        press(wizard, "pushButtonnext");
        fillPage(wizard);
    }

    void compute() {
        m_names = QStringList{m_output.absoluteFilePath("results/" + m_case.name + ".dat")};
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

    const TourCase& m_case;
    QDir m_cases;
    QDir m_output;
    QTimer m_poll;
    QStringList m_names;
    QString m_trouble;
    bool m_answering = false;
    int m_pictures = 0;
};

QString caseHelp() {
    QStringList names;
    for (const TourCase& c : tourCases)
        names << c.name;
    return QStringLiteral("The case to take: ") + names.join(QStringLiteral(", ")) + '.';
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Takes a sample case through the windows and leaves pictures of them."));
    parser.addHelpOption();
    const QCommandLineOption caseOption(QStringLiteral("case"), caseHelp(), QStringLiteral("name"),
                                        tourCases.front().name);
    parser.addOption(caseOption);
    parser.addPositionalArgument(QStringLiteral("cases"), QStringLiteral("The folder of the sample cases."));
    parser.addPositionalArgument(QStringLiteral("output"), QStringLiteral("Emptied, then filled."));
    parser.process(application);
    const QStringList arguments = parser.positionalArguments();
    const auto tourCase = std::find_if(tourCases.begin(), tourCases.end(),
                                       [&](const TourCase& c) { return c.name == parser.value(caseOption); });
    if (arguments.size() != 2 || tourCase == tourCases.end()) {
        std::fprintf(stderr, "%s", qPrintable(parser.helpText()));
        return 2;
    }
    QDir output(arguments.at(1));
    output.removeRecursively();
    if (!output.mkpath(QStringLiteral("results"))) {
        std::fprintf(stderr, "cannot make the folder %s\n", qPrintable(output.path()));
        return 1;
    }
    const QString outputFolder = output.absolutePath();
    const QString casesFolder = QDir(arguments.at(0)).absolutePath();
    QDir::setCurrent(casesFolder);
    mainWindow = new MainWindow;
    int code = 0;
    try {
        Tour tour(*tourCase, casesFolder, outputFolder);
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
