// The driver that runs a 3D case from start to end.
#pragma once

#include <QString>

class MainWindow;

namespace fluvane {

/// Runs a case until it converges (steps = 0) or for a fixed number of steps at most, writing a result file
/// and checking health and residuals every `saveInterval` steps, step 0 included.
///
/// @param window        not used
/// @param threads       number of threads of the parallel loops
/// @param tolU, tolT    deliberately not used: the threshold of checkConvergence3D is fixed
/// @param steps         most steps; 0 means until converged, a negative number none
/// @param saveInterval  at least 1, else nothing is started
/// @param fileName      result file; ".dat" is taken out and "_", the step number and ".dat" are added
/// Returns true when the run ended normally, false on a NaN, a refusal or when the program is closing.
bool run3D(MainWindow* window, unsigned threads, double tolU, double tolT, int steps, int saveInterval,
           const QString& fileName);

} // namespace fluvane
