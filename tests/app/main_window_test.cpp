// Tests of the main window: what it shows, what it refuses and which window follows which.
#include "app/main_window.h"

#include "dialogs/boundary.h"
#include "dialogs/boundary_3d.h"
#include "dialogs/physics.h"
#include "shell_fixture.h"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTranslator>

using fluvane::caseSettings;

namespace {

const QString noMeshFile = QStringLiteral("Wrong: Cannot found the mesh file");
const QString noMesh = QStringLiteral("Error: Cannot found the mesh");
const QString noLattice = QStringLiteral("Error: Did not initilize the lattice properties");
const QString noBoundary = QStringLiteral("Error: Did not initilize the boundary");
const QString running = QStringLiteral("Message: A computation is running; please wait until it is done");

/// Notes every text that a form asks a translation for.
class Listener : public QTranslator {
public:
    mutable QStringList asked;
    QString translate(const char* context, const char* text, const char*, int) const override {
        if (qstrcmp(context, "MainWindow") == 0)
            asked << QString::fromUtf8(text);
        return {};
    }
    bool isEmpty() const override { return false; }
};

QStringList entries(const QMenu* menu) {
    QStringList texts;
    for (const QAction* const action : menu->actions())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->objectName());
    return texts;
}

void prepareAll() {
    caseSettings.meshLoaded = true;
    caseSettings.latticeInitialised = true;
    caseSettings.boundaryInitialised = true;
}

} // namespace

class MainWindowTest : public QObject {
    Q_OBJECT

private slots:
    void declaresTwoSignalsAndNoSlot() {
        QCOMPARE(ownMethods(MainWindow::staticMetaObject), QStringList({"Read_velocity()", "Read_mesh()"}));
    }

    void placesItsWidgets_data() {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<int>("points");
        QTest::newRow("labelnumcell") << QRect(10, 10, 141, 19) << 12;
        QTest::newRow("labelnumpoint") << QRect(190, 10, 141, 19) << 12;
        QTest::newRow("labelnumface") << QRect(370, 10, 141, 19) << 12;
        QTest::newRow("textBrowser") << QRect(30, 80, 731, 391) << 9;
        QTest::newRow("pushButton_compute") << QRect(320, 500, 101, 31) << 9;
        QTest::newRow("labelcopright") << QRect(10, 550, 531, 24) << 9;
        QTest::newRow("menubar") << QRect(0, 0, 800, 22) << 9;
    }
    void placesItsWidgets() {
        QFETCH(QRect, place);
        QFETCH(int, points);
        const Shell shell;
        auto* const widget = shell.find<QWidget>(QTest::currentDataTag());
        QVERIFY(widget);
        if (widget->objectName() == "menubar") // as high as its font
            QCOMPARE(QRect(widget->geometry().topLeft(), QSize(widget->width(), place.height())), place);
        else
            QCOMPARE(widget->geometry(), place);
        QCOMPARE(widget->font().family(), QString("Times New Roman"));
        QCOMPARE(widget->font().pointSize(), points);
    }

    void hasAFixedSizeTitleAndTexts() {
        const Shell shell;
        QCOMPARE(shell.window->size(), QSize(800, 600));
        QCOMPARE(shell.window->minimumSize(), QSize(800, 600));
        QCOMPARE(shell.window->maximumSize(), QSize(800, 600));
        QCOMPARE(shell.window->windowTitle(), QString("Fluvane"));
        QCOMPARE(shell.find<QPushButton>("pushButton_compute")->text(), QString("Compute"));
        QVERIFY(shell.text("labelcopright").startsWith("©"));
        QVERIFY(shell.text("labelcopright").endsWith("   Version 0.16"));
        QVERIFY(shell.terminal().isEmpty());
    }

    // Deliberate: the form carries the Chinese texts, the user sees the English ones.
    void theCountLabelsAreChineseInTheFormAndEnglishOnTheScreen() {
        Listener listener;
        QCoreApplication::installTranslator(&listener);
        {
            const Shell shell;
            QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: "));
            QCOMPARE(shell.text("labelnumface"), QString("Num of Face: "));
            QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: "));
        }
        QCoreApplication::removeTranslator(&listener);
        for (const char* const text : {"网格数：", "点  数：", "表面数："})
            QVERIFY2(listener.asked.contains(QString::fromUtf8(text)), text);
    }

    void hasTheMenusInOrder() {
        const Shell shell;
        QStringList titles;
        for (const QAction* const menu : shell.find<QMenuBar>("menubar")->actions())
            titles << menu->menu()->objectName() + "=" + menu->text();
        QCOMPARE(titles,
                 QStringList({"File=File", "Initial=Initial", "menuOuput_Test=Ouput_Test", "menuHelp=Help"}));
        QCOMPARE(entries(shell.find<QMenu>("File")), QStringList({"actionOpen", "-", "actionSave"}));
        QCOMPARE(entries(shell.find<QMenu>("Initial")), QStringList({"actionLattice", "actionBoundary"}));
        QCOMPARE(entries(shell.find<QMenu>("menuOuput_Test")),
                 QStringList({"actionCell", "actionFace", "actionPoint"}));
        QCOMPARE(entries(shell.find<QMenu>("menuHelp")), QStringList({"actionHelp", "-", "actionVersion"}));
    }

    void namesItsActions_data() {
        QTest::addColumn<QString>("text");
        for (const char* const name : {"Open_3D", "Open", "Save", "Save_2D", "Boundary", "Lattice", "Face",
                                       "Cell", "Point", "Cell_3D", "Help", "Version"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void namesItsActions() {
        QFETCH(QString, text);
        const Shell shell;
        const auto* const action = shell.window->findChild<QAction*>("action" + text);
        QVERIFY(action);
        QCOMPARE(action->text(), text);
    }

    // Deliberate: three actions are kept that no menu holds and that do nothing.
    void threeActionsAreInNoMenuAndDoNothing() {
        const Shell shell;
        prepareAll();
        for (const char* const name : {"actionOpen_3D", "actionSave_2D", "actionCell_3D"}) {
            QVERIFY2(shell.find<QAction>(name)->associatedWidgets().isEmpty(), name);
            shell.choose(name);
        }
        QVERIFY(shell.window->isVisible());
        QVERIFY(shell.answers.seen.isEmpty());
    }

    void everyDialogIsAWindowOfItsOwn() {
        const Shell shell;
        for (const char* const name :
             {"Boundary_Information_Win", "Lattice_Win", "Initial_Win", "NUM_Process_Win", "Dimension_Win",
              "HELP_Win", "Version_Win", "Boundary_Information_Win_3D"}) {
            const QWidget* const dialog = Shell::dialog(name);
            QVERIFY2(dialog, name);
            QVERIFY2(!dialog->parent() && !dialog->isVisible(), name);
        }
    }

    void thePointerGoesWithTheWindow() {
        {
            const Shell shell;
            QCOMPARE(mainWindow, shell.window.get());
        }
        QVERIFY(!mainWindow);
    }

    // --- opening -----------------------------------------------------------------------------------------

    void openAsksForTheDimensionAndCancelComesBack() {
        const Shell shell;
        shell.choose("actionOpen");
        QWidget* const dimension = Shell::dialog("Dimension_Win");
        QVERIFY(dimension->isVisible() && !shell.window->isVisible());
        Shell::press(dimension, "pushButton_cancel");
        QVERIFY(!dimension->isVisible() && shell.window->isVisible());
        QVERIFY(shell.answers.seen.isEmpty());
    }

    void cancellingTheVelocityFileStopsTheChain() {
        const Shell shell;
        shell.choose("actionOpen");
        Shell::press(Shell::dialog("Dimension_Win"), "pushButton_2D");
        QCOMPARE(shell.answers.seen,
                 QStringList({"Velocity file [*.2Dv]", "Error: Please select the velocity file"}));
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Dimension_Win")->isVisible());
        QVERIFY(!caseSettings.meshLoaded);
    }

    void aThreeDimensionalCaseAsksForItsOwnVelocityFiles() {
        const Shell shell;
        shell.choose("actionOpen");
        Shell::press(Shell::dialog("Dimension_Win"), "pushButton_3D");
        QCOMPARE(shell.answers.seen.constFirst(), QString("Velocity file [*.3Dv]"));
    }

    void aRefusedVelocityFileStopsTheChainAndSaysWhy() {
        Shell shell;
        QVERIFY(writeText(shell.path("bad.2Dv"), "0 0 4 0 0\n"));
        shell.answers.names = QStringList{shell.path("bad.2Dv")};
        emit shell.window->Read_velocity();
        QCOMPARE(shell.answers.seen,
                 QStringList({"Velocity file [*.2Dv]", "Error: Please select the velocity file"}));
        QVERIFY(shell.terminal().join(' ').contains("bad.2Dv"));
    }

    void cancellingTheMeshFileIsNamed() {
        Shell shell;
        QVERIFY(writeText(shell.path("nine.2Dv"), velocityLines));
        shell.answers.names = QStringList{shell.path("nine.2Dv")};
        emit shell.window->Read_velocity();
        QCOMPARE(shell.answers.seen, QStringList({"Velocity file [*.2Dv]", "Mesh file [*.msh]",
                                                  "Error: Please select the mesh file"}));
        QVERIFY(!caseSettings.meshLoaded);
    }

    void aRefusedMeshLeavesFlagLabelsAndTerminal_data() {
        QTest::addColumn<bool>("loadedBefore");
        QTest::addColumn<bool>("is3D");
        QTest::newRow("first mesh") << false << false;
        QTest::newRow("after another") << true << false;
        QTest::newRow("first 3D mesh") << false << true;
        QTest::newRow("3D after another") << true << true;
    }
    void aRefusedMeshLeavesFlagLabelsAndTerminal() {
        QFETCH(bool, loadedBefore);
        QFETCH(bool, is3D);
        Shell shell;
        caseSettings.meshLoaded = loadedBefore;
        caseSettings.is3D = is3D;
        fluvane::appendTerminalLine("before");
        QVERIFY(writeText(shell.path("bad.msh"), "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n"));
        shell.answers.names = QStringList{shell.path("bad.msh")};
        shell.window->Open_mesh_file();
        QCOMPARE(shell.answers.seen,
                 QStringList({"Mesh file [*.msh]",
                              QString("Error: Please select the %1 file").arg(is3D ? "3D" : "2D")}));
        QCOMPARE(caseSettings.meshLoaded, loadedBefore);
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: "));
        QCOMPARE(shell.text("labelnumface"), QString("Num of Face: "));
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: "));
        QCOMPARE(shell.terminal().constFirst(), QString("before"));
        QVERIFY(shell.terminal().constLast().contains("bad.msh"));
    }

    void fileDialogsStartInTheProjectFolderOrWhereTheProgramWasStarted() {
        const Shell shell;
        const QString here = QDir::current().canonicalPath();
        shell.window->Open_mesh_file();
        QCOMPARE(QDir(shell.answers.folders.constLast()).canonicalPath(), here);
        QVERIFY(QDir::current().mkpath("D/Fluvane_project"));
        shell.window->Open_mesh_file();
        QCOMPARE(QDir(shell.answers.folders.constLast()).canonicalPath(), here + "/D/Fluvane_project");
    }

    // --- set-up ------------------------------------------------------------------------------------------

    void latticeWithoutAMeshIsWrong() {
        const Shell shell;
        shell.choose("actionLattice");
        QCOMPARE(shell.answers.seen, QStringList(noMeshFile));
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Lattice_Win")->isVisible());
    }

    void latticeThenPhysicsThenBack() {
        const Shell shell;
        caseSettings.meshLoaded = true;
        shell.choose("actionLattice");
        QWidget* const lattice = Shell::dialog("Lattice_Win");
        QWidget* const physics = Shell::dialog("Initial_Win");
        QVERIFY(lattice->isVisible() && !shell.window->isVisible());
        Shell::press(lattice, "pushButton_ok");
        QVERIFY(physics->isVisible() && !lattice->isVisible() && !shell.window->isVisible());
        QVERIFY(!caseSettings.latticeInitialised);
        Shell::press(physics, "pushButton_ok");
        QVERIFY(shell.window->isVisible() && !physics->isVisible());
        QVERIFY(caseSettings.latticeInitialised);
    }

    void cancellingLatticeOrPhysicsComesBackWithoutTheFlag() {
        const Shell shell;
        caseSettings.meshLoaded = true;
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_cancel");
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Lattice_Win")->isVisible());
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        Shell::press(Shell::dialog("Initial_Win"), "pushButton_cancel");
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Initial_Win")->isVisible());
        QVERIFY(!caseSettings.latticeInitialised);
    }

    void boundaryNamesEverythingThatIsMissing_data() {
        QTest::addColumn<bool>("meshLoaded");
        QTest::addColumn<bool>("lattice");
        QTest::addColumn<QStringList>("said");
        QTest::newRow("neither") << false << false << QStringList({noMeshFile, noLattice});
        QTest::newRow("no mesh") << false << true << QStringList({noMeshFile});
        QTest::newRow("no lattice") << true << false << QStringList({noLattice});
    }
    void boundaryNamesEverythingThatIsMissing() {
        QFETCH(bool, meshLoaded);
        QFETCH(bool, lattice);
        QFETCH(QStringList, said);
        const Shell shell;
        caseSettings.meshLoaded = meshLoaded;
        caseSettings.latticeInitialised = lattice;
        shell.choose("actionBoundary");
        QCOMPARE(shell.answers.seen, said);
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Boundary_Information_Win")->isVisible());
    }

    void boundaryOpensTheWizardOfTheDimension_data() {
        QTest::addColumn<bool>("is3D");
        QTest::newRow("2D") << false;
        QTest::newRow("3D") << true;
    }
    void boundaryOpensTheWizardOfTheDimension() {
        QFETCH(bool, is3D);
        const Shell shell;
        caseSettings.meshLoaded = caseSettings.latticeInitialised = true;
        caseSettings.is3D = is3D;
        QWidget* const wizard =
            Shell::dialog(is3D ? "Boundary_Information_Win_3D" : "Boundary_Information_Win");
        QWidget* const other =
            Shell::dialog(is3D ? "Boundary_Information_Win" : "Boundary_Information_Win_3D");
        shell.choose("actionBoundary");
        QVERIFY(wizard->isVisible() && !other->isVisible() && !shell.window->isVisible());
        // Told to start: the label no longer holds the form's text.
        QCOMPARE(wizard->findChild<QLabel*>("labelBI")->text(), QString());
        Shell::press(wizard, "pushButtoncancel");
        QVERIFY(shell.window->isVisible() && !wizard->isVisible());
        QVERIFY(!caseSettings.boundaryInitialised);

        shell.choose("actionBoundary");
        Shell::press(wizard, "pushButtonnext");
        QVERIFY(shell.window->isVisible() && !wizard->isVisible());
        QVERIFY(caseSettings.boundaryInitialised);
    }

    void aSetUpWindowClosedByItsFrameIsCancelled_data() {
        QTest::addColumn<QByteArray>("name");
        for (const char* const name : {"Dimension_Win", "Lattice_Win", "Initial_Win", "NUM_Process_Win",
                                       "Boundary_Information_Win", "Boundary_Information_Win_3D"})
            QTest::newRow(name) << QByteArray(name);
    }
    void aSetUpWindowClosedByItsFrameIsCancelled() {
        QFETCH(QByteArray, name);
        const Shell shell;
        QSignalSpy quits(qApp, &QGuiApplication::lastWindowClosed);
        prepareAll();
        QWidget* const dialog = Shell::dialog(name.constData());
        dialog->show();
        shell.window->hide();
        dialog->close();
        QCoreApplication::processEvents();
        QVERIFY(shell.window->isVisible());
        QVERIFY(!dialog->isVisible());
        QCOMPARE(quits.count(), 0);
    }

    // --- running -----------------------------------------------------------------------------------------

    void computeNamesEverythingThatIsMissing_data() {
        QTest::addColumn<int>("ready");
        for (int ready = 0; ready < 7; ++ready)
            QTest::addRow("mesh %d lattice %d boundary %d", ready & 1, ready >> 1 & 1, ready >> 2) << ready;
    }
    void computeNamesEverythingThatIsMissing() {
        QFETCH(int, ready);
        const Shell shell;
        caseSettings.meshLoaded = ready & 1;
        caseSettings.latticeInitialised = ready & 2;
        caseSettings.boundaryInitialised = ready & 4;
        QStringList said;
        if (!(ready & 1))
            said << noMesh;
        if (!(ready & 2))
            said << noLattice;
        if (!(ready & 4))
            said << noBoundary;
        shell.find<QPushButton>("pushButton_compute")->click();
        QCOMPARE(shell.answers.seen, said);
        QVERIFY(shell.window->isVisible() && !Shell::dialog("NUM_Process_Win")->isVisible());
    }

    void computeOpensTheRunControlWithTheFieldsOfTheCase() {
        const Shell shell;
        prepareAll();
        caseSettings.steadyState = true;
        caseSettings.flowOn = 1;
        shell.find<QPushButton>("pushButton_compute")->click();
        QWidget* const control = Shell::dialog("NUM_Process_Win");
        QVERIFY(control->isVisible() && !shell.window->isVisible());
        QVERIFY(control->findChild<QLineEdit*>("lineEdit_Error_U")->isVisible());
        QVERIFY(!control->findChild<QLineEdit*>("lineEdit_Error_T")->isVisible());
        Shell::press(control, "pushButton_cancel");
        QVERIFY(!control->isVisible() && shell.window->isVisible());
    }

    void cancellingTheAutoSaveNameStartsNothing() {
        const Shell shell;
        prepareAll();
        Shell::dialog("NUM_Process_Win")->show();
        shell.window->hide();
        shell.window->Start_compute(1, 1e-9, 1e-9, 1, 1);
        QCOMPARE(shell.answers.seen,
                 QStringList({"Auto Saved [*.dat]", "Error: Please select the auto save route and name"}));
        QVERIFY(shell.window->isVisible() && !Shell::dialog("NUM_Process_Win")->isVisible());
        QVERIFY(!fluvane::runActive());
        QVERIFY(shell.terminal().isEmpty());
    }

    void whatCannotRunIsRefusedBeforeANameIsAskedFor_data() {
        QTest::addColumn<QString>("case_");
        QTest::addColumn<QString>("said");
        QTest::newRow("interval") << "interval"
                                  << "Error: Terminal must be at least 1";
        QTest::newRow("dimension") << "dimension"
                                   << "Error: The mesh is of the other dimension; please open the mesh again";
        QTest::newRow("velocities")
            << "velocities"
            << "Error: The velocity file was read after the mesh; please open the mesh again";
        QTest::newRow("opposites") << "opposites"
                                   << "Error: The velocity file lacks the opposite of a velocity; please end "
                                      "its last line and open the case again";
    }
    void whatCannotRunIsRefusedBeforeANameIsAskedFor() {
        QFETCH(QString, case_);
        QFETCH(QString, said);
        Shell shell;
        prepareAll();
        shell.answers.names = QStringList{shell.path("run")};
        if (case_ == "dimension") {
            caseSettings.is3D = true;
            fluvane::mesh.allocateCells2D(1);
        }
        if (case_ == "velocities") {
            fluvane::velocitySet.velocityCount = 5;
            fluvane::mesh.allocateCells2D(1);
            fluvane::velocitySet.velocityCount = 9;
        }
        if (case_ == "opposites") {
            fluvane::velocitySet.velocityCount = 8;
            fluvane::velocitySet.opposite[6] = 8;
            fluvane::mesh.allocateCells2D(1);
        }
        shell.window->Start_compute(1, 1e-9, 1e-9, 1, case_ == "interval" ? 0 : 1);
        QCOMPARE(shell.answers.seen, QStringList(said));
        QVERIFY(!fluvane::runActive());
        QVERIFY(QDir(shell.folder.path()).isEmpty());
    }

    void whileARunIsOnNeitherOpenNorComputeOpensAnything() {
        const Shell shell;
        prepareAll();
        QVERIFY(fluvane::tryStartRun());
        shell.choose("actionOpen");
        shell.find<QPushButton>("pushButton_compute")->click();
        shell.window->Start_compute(1, 1e-9, 1e-9, 1, 1);
        emit shell.window->Read_velocity();
        emit shell.window->Read_mesh();
        fluvane::endRun();
        QCOMPARE(shell.answers.seen, QStringList({running, running, running, running, running}));
        QVERIFY(shell.window->isVisible());
        QVERIFY(!Shell::dialog("Dimension_Win")->isVisible());
        QVERIFY(!Shell::dialog("NUM_Process_Win")->isVisible());
    }

    void aRunOfAnEmptyMeshEndsAtOnce() {
        Shell shell;
        prepareAll();
        caseSettings.steadyState = true;
        shell.answers.names = QStringList{shell.path("run.dat")};
        shell.window->Start_compute(1, 1e-9, 1e-9, 0, 1);
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
    }

    // --- saving and dumping ------------------------------------------------------------------------------

    void withoutAMeshNothingIsSavedOrDumped() {
        const Shell shell;
        for (const char* const action : {"actionSave", "actionCell", "actionFace", "actionPoint"})
            shell.choose(action);
        QCOMPARE(shell.answers.seen, QStringList({noMeshFile, noMeshFile, noMeshFile, noMeshFile}));
        QVERIFY(QDir(shell.folder.path()).isEmpty());
    }

    void aCancelledSaveDoesNothing() {
        const Shell shell;
        caseSettings.meshLoaded = true;
        fluvane::mesh.allocateCells2D(1);
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen, QStringList("Data file [*.dat]"));
        QVERIFY(QDir(shell.folder.path()).isEmpty());
    }

    void savingAMeshWithoutCellsWritesNothingAndSaysNothing() {
        Shell shell;
        caseSettings.meshLoaded = true;
        shell.answers.names = QStringList{shell.path("out.dat")};
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen, QStringList("Data file [*.dat]"));
        QVERIFY(QDir(shell.folder.path()).isEmpty());
    }

    void savingWritesTheFileUnderTheNameThatWasTyped() {
        Shell shell;
        caseSettings.meshLoaded = true;
        fluvane::mesh.allocateCells2D(1);
        shell.answers.names = QStringList{shell.path("out.dat")};
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen, QStringList({"Data file [*.dat]", "Message: Save Succeed"}));
        QFile file(shell.path("out.dat"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readLine(), QByteArray("TITLE = \"UNSTRUCTED TEST\"\r\n"));
        QVERIFY(shell.terminal().isEmpty());
    }

    // Deliberate: "Save Succeed" is said whatever the writer did; a failure stands in the terminal.
    void successIsSaidWhateverTheWriterDid() {
        Shell shell;
        caseSettings.meshLoaded = true;
        fluvane::mesh.allocateCells2D(1);
        shell.answers.names = QStringList{shell.path("no such folder/out.dat")};
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen.constLast(), QString("Message: Save Succeed"));
        QCOMPARE(shell.terminal(),
                 QStringList(shell.path("no such folder/out.dat") + ": could not be written"));
    }

    void aThreeDimensionalCaseIsSavedAsTetrahedra() {
        Shell shell;
        caseSettings.meshLoaded = caseSettings.is3D = true;
        fluvane::mesh.allocateCells3D(1);
        shell.answers.names = QStringList{shell.path("out.dat")};
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen, QStringList({"Data file [*.dat]", "Message: Save Succeed"}));
        QFile file(shell.path("out.dat"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("ZONE N=0, E=1, ZONETYPE = FETETRAHEDRON\r\n"));
        QVERIFY(shell.terminal().isEmpty());
    }

    void aMeshOfTheOtherDimensionIsNotSaved() {
        const Shell shell;
        caseSettings.meshLoaded = caseSettings.is3D = true;
        fluvane::mesh.allocateCells2D(1);
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen,
                 QStringList("Error: The mesh is of the other dimension; please open the mesh again"));
    }

    void dumpsGoToTheWorkingFolder() {
        const Shell shell;
        caseSettings.meshLoaded = true;
        shell.choose("actionCell");
        QCOMPARE(QDir(shell.folder.path()).entryList(QDir::Files), QStringList("cell.txt"));
        shell.choose("actionFace");
        shell.choose("actionPoint");
        QCOMPARE(QDir(shell.folder.path()).entryList(QDir::Files),
                 QStringList({"cell.txt", "face.txt", "point.txt"}));
        QVERIFY(shell.answers.seen.isEmpty());
    }

    // --- help and end ------------------------------------------------------------------------------------

    void helpAndVersionShowAndHideBesideTheMainWindow() {
        const Shell shell;
        shell.choose("actionHelp");
        shell.choose("actionVersion");
        QVERIFY(shell.window->isVisible());
        for (const char* const name : {"HELP_Win", "Version_Win"}) {
            QVERIFY2(Shell::dialog(name)->isVisible(), name);
            Shell::press(Shell::dialog(name), "pushButton_ok");
            QVERIFY2(!Shell::dialog(name)->isVisible(), name);
        }
    }

    void closingTheMainWindowEndsTheProgramAlsoWithHelpOpen() {
        const Shell shell;
        shell.choose("actionHelp");
        QTimer::singleShot(0, shell.window.get(), &QWidget::close);
        QTimer::singleShot(patience, qApp, [] { QCoreApplication::exit(77); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(!shell.window->isVisible());
        QVERIFY(fluvane::stopRequested());
        allowNestedLoopsAgain();
    }

private:
    /// After quit() nested loops end at once until the main loop has run again.
    static void allowNestedLoopsAgain() {
        QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }
};

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"
