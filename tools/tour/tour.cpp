// A guided tour: takes a sample case through the real windows as a user would and leaves a picture of each
// window and the results in a folder.
#include "app/main_window.h"
#include "dialogs/case_settings.h"
#include "mesh/run_gate.h"
#include "tour_cases.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

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

/// Pictures of windows have few colours: a palette of just these makes their files small and loses nothing.
QImage withPalette(const QImage& picture) {
    constexpr int most = 256;
    QImage plain = picture.convertToFormat(QImage::Format_RGB32);
    QVector<QRgb> colours;
    QSet<QRgb> seen;
    for (int y = 0; y < plain.height(); ++y)
        for (int x = 0; x < plain.width(); ++x) {
            const QRgb colour = plain.pixel(x, y);
            if (seen.contains(colour))
                continue;
            if (colours.size() == most)
                return plain;
            seen.insert(colour);
            colours.append(colour);
        }
    return plain.convertToFormat(QImage::Format_Indexed8, colours);
}

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
        if (!withPalette(widget.grab().toImage()).save(m_output.filePath(file), "PNG", 0))
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
            if (files->acceptMode() == QFileDialog::AcceptOpen && !wanted.isFile()) {
                // The dialog would say so in a box that nobody answers.
                m_trouble = QStringLiteral("cannot find ") + wanted.filePath();
                files->reject();
                return;
            }
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
        QWidget& physics = passLattice("lattice");
        picture(physics, "physics");
        fillPhysics(physics);
        picture(physics, "physics-filled");
        press(physics, "pushButton_ok");
        expect(fluvane::caseSettings.latticeInitialised, QStringLiteral("the physics was not taken"));
        picture(window(), "main-lattice");
        if (m_case.phase != Phase::none)
            setPhaseChange();
    }

    /// Through the lattice window into the physics window.
    QWidget& passLattice(const QString& name) {
        choose("actionLattice");
        QWidget& lattice = dialog("Lattice_Win");
        if (!m_case.CFL.isEmpty())
            type(lattice, "lineEdit_CFL", m_case.CFL);
        picture(lattice, name);
        press(lattice, "pushButton_ok");
        return dialog("Initial_Win");
    }

    void pick(QWidget& widget, const char* list, int index) {
        part<QComboBox>(&widget, list)->setCurrentIndex(index);
    }

    void fillPhysics(QWidget& physics) {
        pick(physics, "comboBox_flow", static_cast<int>(m_case.flow));
        pick(physics, "comboBox_heat_transfer", static_cast<int>(m_case.heat));
        pick(physics, "comboBox_Phase_change", static_cast<int>(m_case.phase));
        pick(physics, "comboBox_time", static_cast<int>(m_case.time));
        for (const auto& [field, text] :
             {std::pair("lineEdit_L", m_case.L), std::pair("lineEdit_Re_or_Ra", m_case.ReOrRa),
              std::pair("lineEdit_Pr", m_case.Pr)})
            if (!text.isEmpty())
                type(physics, field, text);
    }

    /// The latent heat is worked out from the numbers of the physics window, and the enthalpy that a run
    /// starts from from the latent heat: both windows are confirmed again.
    void setPhaseChange() {
        QWidget& physics = passLattice("lattice-again");
        press(physics, "pushButton_phase_change");
        QWidget& solidLiquid = dialog("Solid_liquid");
        type(solidLiquid, "lineEdit_Ts", m_case.phaseChange.solidus);
        type(solidLiquid, "lineEdit_Tl", m_case.phaseChange.liquidus);
        type(solidLiquid, "lineEdit_Ste", m_case.phaseChange.stefan);
        type(solidLiquid, "lineEdit_Fl", m_case.phaseChange.liquidFraction);
        picture(solidLiquid, "phase-change");
        press(solidLiquid, "pushButton_ok");
        picture(dialog("Initial_Win"), "physics-again");
        press(physics, "pushButton_ok");
    }

    void setBoundaries() {
        choose("actionBoundary");
        QWidget& wizard = dialog(m_case.is3D ? "Boundary_Information_Win_3D" : "Boundary_Information_Win");
        for (int zone = 0; zone < 100 && !fluvane::caseSettings.boundaryInitialised; ++zone) {
            fillPage(wizard);
            picture(wizard, QStringLiteral("boundary-") + zoneOf(wizard));
            if (zone == 1)
                lookBack(wizard);
            press(wizard, "pushButtonnext");
        }
        expect(fluvane::caseSettings.boundaryInitialised, QStringLiteral("the boundaries were not taken"));
    }

    QString zoneOf(QWidget& wizard) { return part<QLabel>(&wizard, "labelBI")->text().trimmed(); }

    void fillPage(QWidget& wizard) {
        TourPage page;
        for (const TourPage& candidate : m_case.pages)
            if (candidate.zone == zoneOf(wizard))
                page = candidate;
        pick(wizard, "comboBox_flow_type", static_cast<int>(page.flow));
        if (m_case.flow != Flow::none && page.flow != FlowCondition::outflow)
            fillVelocity(wizard, page.velocity);
        if (m_case.heat == Heat::none)
            return;
        pick(wizard, "comboBox", static_cast<int>(page.thermal));
        if (page.thermal != ThermalCondition::adiabatic)
            type(wizard, "lineEdit_T", page.T);
    }

    void fillVelocity(QWidget& wizard, const QStringList& velocity) {
        const QStringList fields{"lineEdit_ux", "lineEdit_uy", "lineEdit_uz"};
        for (int axis = 0; axis < (m_case.is3D ? 3 : 2); ++axis)
            type(wizard, fields[axis].toLatin1().constData(),
                 velocity.isEmpty() ? QStringLiteral("0") : velocity[axis]);
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
        type(control, "lineEdit_Time_Step", m_case.steps);
        type(control, "lineEdit_Terminal", m_case.terminal);
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
    for (const TourCase& c : tourCases())
        names << c.name;
    return QStringLiteral("The case to take: ") + names.join(QStringLiteral(", ")) + '.';
}

/// A file in the folders that tours filled.
constexpr char markerName[] = ".made-by-the-tour";

/// Removes what an earlier tour left; nothing else, whatever was typed for a folder, and nothing behind a
/// link. Says why not.
bool emptied(QDir& folder) {
    if (!folder.exists() || folder.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        return true;
    const bool ours = folder.exists(QString::fromLatin1(markerName)) &&
                      !QFileInfo(QDir::cleanPath(folder.path())).isSymLink();
    if (ours && folder.removeRecursively())
        return true;
    std::fprintf(stderr,
                 ours ? "cannot empty %s\n" : "%s holds files that no tour made; choose another folder\n",
                 qPrintable(folder.absolutePath()));
    return false;
}

} // namespace

int main(int argc, char* argv[]) {
    // The file windows look the same everywhere, and leave the user's own history alone.
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Takes a sample case through the windows and leaves pictures of them."));
    parser.addHelpOption();
    const QCommandLineOption caseOption(QStringLiteral("case"), caseHelp(), QStringLiteral("name"),
                                        tourCases().front().name);
    parser.addOption(caseOption);
    parser.addPositionalArgument(QStringLiteral("cases"), QStringLiteral("The folder of the sample cases."));
    parser.addPositionalArgument(QStringLiteral("output"), QStringLiteral("Emptied, then filled."));
    parser.process(application);
    const QStringList arguments = parser.positionalArguments();
    const auto tourCase = std::find_if(tourCases().begin(), tourCases().end(),
                                       [&](const TourCase& c) { return c.name == parser.value(caseOption); });
    if (arguments.size() != 2 || tourCase == tourCases().end()) {
        std::fprintf(stderr, "%s", qPrintable(parser.helpText()));
        return 2;
    }
    QDir output(arguments.at(1));
    if (!emptied(output))
        return 1;
    QFile marker(output.filePath(QString::fromLatin1(markerName)));
    if (!output.mkpath(QStringLiteral("results")) || !marker.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "cannot write into the folder %s\n", qPrintable(output.path()));
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
