// The main window: menus, counts, terminal pane, and the order in which a case is prepared and run.
#include "app/main_window.h"

#include "app/fit_label.h"
#include "app/help.h"
#include "app/run_control.h"
#include "app/run_task.h"
#include "app/terminal_feed.h"
#include "app/version.h"
#include "app/window_work.h"
#include "dialogs/boundary.h"
#include "dialogs/boundary_3d.h"
#include "dialogs/case_settings.h"
#include "dialogs/dimension.h"
#include "dialogs/physics.h"
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/dumps.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "solver2d/run_support.h"
#include "ui_main_window.h"
#include "velocity/lattice.h"
#include "velocity/velocity_file.h"
#include "velocity/velocity_set.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>

using fluvane::caseSettings;
using fluvane::mesh;

MainWindow* mainWindow = nullptr;

namespace {

/// Where the file dialogs start. Deliberate: a drive letter and a slash without a colon, so it is relative to
/// the folder that the program was started in.
constexpr char defaultProjectDir[] = "D/Fluvane_project";

/// A start folder that is not there would be offered as a file name; the current folder is of more use.
QString startFolder() {
    const QString wanted = QString::fromLatin1(defaultProjectDir);
    return QDir(wanted).exists() ? wanted : QDir::currentPath();
}

/// After an opening that was broken off between the dimension and the mesh.
constexpr char otherDimension[] = "The mesh is of the other dimension; please open the mesh again";

template <class Snapshot>
Snapshot captureAsVisitor(Snapshot (*capture)()) {
    const fluvane::VisitorHold hold;
    return capture();
}

/// Writes the state of this instant; a run on meanwhile goes on as soon as it is copied.
bool saveInstant(const QString& path) {
    if (caseSettings.is3D)
        return fluvane::writeResult3D(path, captureAsVisitor(fluvane::captureResult3D));
    return fluvane::writeResult2D(path, captureAsVisitor(fluvane::captureResult2D));
}

/// Shows the waiting cursor for as long as it lives.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), ui(std::make_unique<Ui::MainWindow>()),
      boundaryWizard(std::make_unique<Boundary_Information_Win>()),
      latticeDialog(std::make_unique<Lattice_Win>()), physicsDialog(std::make_unique<Initial_Win>()),
      runControl(std::make_unique<NUM_Process_Win>()), dimensionDialog(std::make_unique<Dimension_Win>()),
      help(std::make_unique<HELP_Win>()), version(std::make_unique<Version_Win>()),
      boundaryWizard3D(std::make_unique<Boundary_Information_Win_3D>()) {
    ui->setupUi(this);
    // Deliberate: the form carries the Chinese texts, the user sees these.
    ui->labelnumcell->setText(QStringLiteral("Num of Cell: "));
    ui->labelnumface->setText(QStringLiteral("Num of Face: "));
    ui->labelnumpoint->setText(QStringLiteral("Num of Point: "));
    terminal = std::make_unique<TerminalFeed>(ui->textBrowser);

    connectOpening();
    connectSetUp();
    connectRun();
    connectDumpsAndHelp();
}

MainWindow::~MainWindow() {
    if (mainWindow == this)
        mainWindow = nullptr;
}

void MainWindow::connectOpening() {
    connect(ui->actionOpen, &QAction::triggered, this, [this] {
        if (refusedWhileRunning())
            return;
        dimensionDialog->show();
        hide();
    });
    connect(dimensionDialog.get(), &Dimension_Win::ok, this, [this] {
        emit Read_velocity();
        leave(dimensionDialog.get());
    });
    connect(dimensionDialog.get(), &Dimension_Win::cancel, this, [this] { leave(dimensionDialog.get()); });
    connect(this, &MainWindow::Read_velocity, this, &MainWindow::Open_velocity_file);
    connect(this, &MainWindow::Read_mesh, this, &MainWindow::Open_mesh_file);
    connect(ui->actionSave, &QAction::triggered, this, &MainWindow::Save_data);
}

void MainWindow::connectSetUp() {
    const auto boundaryDone = [this](QWidget* wizard) {
        leave(wizard);
        caseSettings.boundaryInitialised = true;
    };
    connect(ui->actionBoundary, &QAction::triggered, this, &MainWindow::enterBoundary);
    connect(boundaryWizard.get(), &Boundary_Information_Win::cancel, this,
            [this] { leave(boundaryWizard.get()); });
    connect(boundaryWizard.get(), &Boundary_Information_Win::ok, this,
            [this, boundaryDone] { boundaryDone(boundaryWizard.get()); });
    connect(boundaryWizard3D.get(), &Boundary_Information_Win_3D::cancel, this,
            [this] { leave(boundaryWizard3D.get()); });
    connect(boundaryWizard3D.get(), &Boundary_Information_Win_3D::ok, this,
            [this, boundaryDone] { boundaryDone(boundaryWizard3D.get()); });

    connect(ui->actionLattice, &QAction::triggered, this, &MainWindow::enterLattice);
    connect(latticeDialog.get(), &Lattice_Win::ok, this, [this] {
        physicsDialog->show();
        latticeDialog->hide();
    });
    connect(latticeDialog.get(), &Lattice_Win::cancel, this, [this] { leave(latticeDialog.get()); });
    connect(physicsDialog.get(), &Initial_Win::cancel, this, [this] { leave(physicsDialog.get()); });
    connect(physicsDialog.get(), &Initial_Win::ok, this, [this] {
        leave(physicsDialog.get());
        caseSettings.latticeInitialised = true;
    });
}

void MainWindow::connectRun() {
    connect(ui->pushButton_compute, &QPushButton::clicked, this, &MainWindow::enterCompute);
    connect(runControl.get(), &NUM_Process_Win::ok, this, &MainWindow::Start_compute);
    connect(runControl.get(), &NUM_Process_Win::cancel, this, [this] { leave(runControl.get()); });
}

void MainWindow::connectDumpsAndHelp() {
    connect(ui->actionCell, &QAction::triggered, this,
            [this] { dump(fluvane::dumpCells, QStringLiteral("cell.txt")); });
    connect(ui->actionFace, &QAction::triggered, this,
            [this] { dump(fluvane::dumpFaces, QStringLiteral("face.txt")); });
    connect(ui->actionPoint, &QAction::triggered, this,
            [this] { dump(fluvane::dumpPoints, QStringLiteral("point.txt")); });
    connect(ui->actionHelp, &QAction::triggered, help.get(), &QWidget::show);
    connect(ui->actionVersion, &QAction::triggered, version.get(), &QWidget::show);
    connect(help.get(), &HELP_Win::ok, help.get(), &QWidget::hide);
    connect(version.get(), &Version_Win::ok, version.get(), &QWidget::hide);
}

void MainWindow::leave(QWidget* dialog) {
    show();
    dialog->hide();
}

void MainWindow::say(const QString& body, const QString& title) {
    QMessageBox::information(this, title, body);
}

bool MainWindow::refusedWhileRunning() {
    if (!fluvane::runActive())
        return false;
    say(QStringLiteral("A computation is running; please wait until it is done"), QStringLiteral("Message"));
    return true;
}

QString MainWindow::askToOpen(const QString& caption, const QString& filter) {
    return QFileDialog::getOpenFileName(this, caption, startFolder(), filter);
}

QString MainWindow::askToSave(const QString& caption) {
    return QFileDialog::getSaveFileName(this, caption, startFolder(), QStringLiteral("*.dat"));
}

void MainWindow::Open_velocity_file() {
    if (refusedWhileRunning())
        return;
    fluvane::takeProblems();
    const QString path = askToOpen(QStringLiteral("Velocity file"),
                                   caseSettings.is3D ? QStringLiteral("*.3Dv") : QStringLiteral("*.2Dv"));
    if (path.isNull() || !fluvane::readVelocityFile(path)) {
        say(QStringLiteral("Please select the velocity file"), QStringLiteral("Error"));
        return;
    }
    emit Read_mesh();
}

void MainWindow::Open_mesh_file() {
    if (refusedWhileRunning())
        return;
    const QString path = askToOpen(QStringLiteral("Mesh file"), QStringLiteral("*.msh"));
    if (path.isNull()) {
        say(QStringLiteral("Please select the mesh file"), QStringLiteral("Error"));
        return;
    }
    if (!readMesh(path)) {
        say(caseSettings.is3D ? QStringLiteral("Please select the 3D file")
                              : QStringLiteral("Please select the 2D file"),
            QStringLiteral("Error"));
        return;
    }
    caseSettings.meshLoaded = true;
    boundaryWizard->startOver();
    boundaryWizard3D->startOver();
    showMesh();
}

bool MainWindow::readMesh(const QString& path) {
    const WaitCursor waiting;
    const bool read = caseSettings.is3D ? fluvane::readMesh3D(path) && fluvane::buildGeometry3D()
                                        : fluvane::readMesh2D(path) && fluvane::buildGeometry2D();
    if (!read)
        mesh.clear();
    return read;
}

void MainWindow::showMesh() {
    terminal->clear();
    ui->labelnumcell->setText(QStringLiteral("Num of Cell: %1").arg(mesh.cellCount));
    ui->labelnumface->setText(QStringLiteral("Num of Face: %1").arg(mesh.totalFaceCount()));
    ui->labelnumpoint->setText(QStringLiteral("Num of Point: %1").arg(mesh.pointCount));
    for (QLabel* const label : {ui->labelnumcell, ui->labelnumface, ui->labelnumpoint})
        fitLabel(label, label->width());
    for (std::size_t zone = 0; zone < static_cast<std::size_t>(mesh.zoneCount); ++zone)
        fluvane::appendTerminalLine(mesh.zoneNames[zone]);
    // What the readers complained about must survive the clearing.
    const QStringList problems = fluvane::takeProblems();
    for (const QString& line : problems)
        fluvane::appendTerminalLine(line);
}

void MainWindow::Save_data() {
    if (!caseSettings.meshLoaded) {
        say(QStringLiteral("Cannot found the mesh file"), QStringLiteral("Wrong"));
        return;
    }
    if (!fluvane::meshHasDimension(caseSettings.is3D)) {
        say(QString::fromLatin1(otherDimension), QStringLiteral("Error"));
        return;
    }
    const QString path = askToSave(QStringLiteral("Data file"));
    if (path.isNull() || mesh.cellCount == 0)
        return;
    if (!doBesideWindow([&path] { return saveInstant(path); }))
        fluvane::appendTerminalLine(path + QStringLiteral(": could not be written"));
    // Deliberate: said whatever the writer did; a failure stands in the terminal.
    say(QStringLiteral("Save Succeed"), QStringLiteral("Message"));
}

void MainWindow::enterLattice() {
    if (!caseSettings.meshLoaded) {
        say(QStringLiteral("Cannot found the mesh file"), QStringLiteral("Wrong"));
        return;
    }
    hide();
    latticeDialog->show();
}

void MainWindow::enterBoundary() {
    if (!caseSettings.meshLoaded)
        say(QStringLiteral("Cannot found the mesh file"), QStringLiteral("Wrong"));
    if (!caseSettings.latticeInitialised)
        say(QStringLiteral("Did not initilize the lattice properties"), QStringLiteral("Error"));
    if (!caseSettings.meshLoaded || !caseSettings.latticeInitialised)
        return;
    hide();
    if (caseSettings.is3D) {
        boundaryWizard3D->show();
        boundaryWizard3D->start();
    } else {
        boundaryWizard->show();
        boundaryWizard->start();
    }
}

void MainWindow::enterCompute() {
    if (refusedWhileRunning())
        return;
    if (!caseSettings.meshLoaded)
        say(QStringLiteral("Cannot found the mesh"), QStringLiteral("Error"));
    if (!caseSettings.latticeInitialised)
        say(QStringLiteral("Did not initilize the lattice properties"), QStringLiteral("Error"));
    if (!caseSettings.boundaryInitialised)
        say(QStringLiteral("Did not initilize the boundary"), QStringLiteral("Error"));
    if (!caseSettings.meshLoaded || !caseSettings.latticeInitialised || !caseSettings.boundaryInitialised)
        return;
    hide();
    runControl->show();
    runControl->Steady_or_transient();
}

bool MainWindow::refusedToRun(int Terminal) {
    if (refusedWhileRunning())
        return true;
    QString reason;
    if (!fluvane::meshHasDimension(caseSettings.is3D))
        reason = QString::fromLatin1(otherDimension);
    else if (mesh.cellCount > 0 && !mesh.matchesVelocitySet())
        reason = QStringLiteral("The velocity file was read after the mesh; please open the mesh again");
    else if (!fluvane::velocitySet.hasAllOpposites())
        reason =
            QStringLiteral("The velocity file lacks the opposite of a velocity; please end its last line "
                           "and open the case again");
    else if (Terminal < 1)
        reason = QStringLiteral("Terminal must be at least 1");
    if (reason.isEmpty())
        return false;
    say(reason, QStringLiteral("Error"));
    return true;
}

void MainWindow::Start_compute(int Process, double Error_U, double Error_T, int Time_Step, int Terminal) {
    leave(runControl.get());
    if (refusedToRun(Terminal))
        return;
    const QString path = askToSave(QStringLiteral("Auto Saved"));
    if (path.isNull()) {
        say(QStringLiteral("Please select the auto save route and name"), QStringLiteral("Error"));
        return;
    }
    const RunTask task{.window = this,
                       .threads = Process,
                       .tolU = Error_U,
                       .tolT = Error_T,
                       .steps = Time_Step,
                       .saveInterval = Terminal,
                       .fileName = path,
                       .is3D = caseSettings.is3D,
                       .steady = caseSettings.steadyState};
    if (!startRunTask(task))
        refusedWhileRunning();
}

void MainWindow::dump(bool (*write)(), const QString& file) {
    if (!caseSettings.meshLoaded) {
        say(QStringLiteral("Cannot found the mesh file"), QStringLiteral("Wrong"));
        return;
    }
    const bool written = doBesideWindow([write] {
        const fluvane::VisitorHold hold;
        return write();
    });
    if (!written)
        fluvane::appendTerminalLine(file + QStringLiteral(": could not be written"));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    fluvane::requestStop();
    event->accept();
    hide();
    // Also with a help window still open.
    QCoreApplication::quit();
}
