// The main window: menus, counts, terminal pane, and the order in which a case is prepared and run.
#pragma once

#include <QMainWindow>
#include <memory>

class Boundary_Information_Win;
class Boundary_Information_Win_3D;
class Dimension_Win;
class HELP_Win;
class Initial_Win;
class Lattice_Win;
class NUM_Process_Win;
class TerminalFeed;
class Version_Win;

namespace Ui {
class MainWindow;
}

/// Owns every dialog as a separate top-level window, shows one of them at a time in its own place, and starts
/// the runs. Receives the terminal lines of the process while it lives. Closing it ends the program: a run
/// stops after its current step.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Asks for the velocity file and reads it; on success goes on with `Read_mesh`.
    void Open_velocity_file();

    /// Asks for the mesh file, reads it and builds its geometry; shows counts and boundary names.
    void Open_mesh_file();

    /// Asks for a name and saves the state of this instant, also while a run is on.
    void Save_data();

    /// Asks for the auto-save name and starts a driver on a pool thread; the arguments are those of
    /// `NUM_Process_Win::ok`. Starts nothing, and says so, while a run is on or when the run could not work.
    void Start_compute(int Process, double Error_U, double Error_T, int Time_Step, int Terminal);

signals:
    void Read_velocity();
    void Read_mesh();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void connectOpening();
    void connectSetUp();
    void connectRun();
    void connectDumpsAndHelp();

    void enterLattice();
    void enterBoundary();
    void enterCompute();
    void dump(bool (*write)(), const QString& file);

    void leave(QWidget* dialog);
    void say(const QString& body, const QString& title);
    bool refusedWhileRunning();
    bool refusedToRun(int Terminal);
    bool readMesh(const QString& path);
    void showMesh();
    QString askToOpen(const QString& caption, const QString& filter);
    QString askToSave(const QString& caption);

    std::unique_ptr<Ui::MainWindow> ui;
    std::unique_ptr<Boundary_Information_Win> boundaryWizard;
    std::unique_ptr<Lattice_Win> latticeDialog;
    std::unique_ptr<Initial_Win> physicsDialog;
    std::unique_ptr<NUM_Process_Win> runControl;
    std::unique_ptr<Dimension_Win> dimensionDialog;
    std::unique_ptr<HELP_Win> help;
    std::unique_ptr<Version_Win> version;
    std::unique_ptr<Boundary_Information_Win_3D> boundaryWizard3D;
    std::unique_ptr<TerminalFeed> terminal;
};

/// The process's main window; set once at start-up.
extern MainWindow* mainWindow;
