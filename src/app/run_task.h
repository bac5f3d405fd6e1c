// One run on a pool thread.
#pragma once

#include <QString>

class MainWindow;

/// What a run was started with: copies, so that nothing the user does later changes them.
struct RunTask {
    MainWindow* window = nullptr;
    int threads = 1; ///< below 1 counts as 1
    double tolU = 0.0;
    double tolT = 0.0;
    int steps = 0;
    int saveInterval = 1;
    QString fileName;
    bool is3D = false;  ///< the 3D driver, whatever the time type
    bool steady = true; ///< in two dimensions: the steady driver, else the transient one
};

/// Claims the mesh and hands the run to the global thread pool; the claim ends with the driver. False, with
/// nothing started, when a run is on already or the program is closing. Nothing waits for the run.
bool startRunTask(const RunTask& task);
