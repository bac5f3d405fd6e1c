// The drivers that run a 2D case from start to end.
#pragma once

#include <QString>

class MainWindow;

namespace fluvane {

/// Runs a steady case until it converges (steps = 0) or for a fixed number of steps, writing a result file
/// and checking health and residuals every `saveInterval` steps, step 0 included.
///
/// @param window        not used
/// @param threads       number of threads of the parallel loops
/// @param tolU, tolT    tolerances of checkConvergence2D
/// @param steps         number of steps; 0 means until converged, a negative number none
/// @param saveInterval  at least 1, else nothing is started
/// @param fileName      result file; ".dat" is taken out and "_", the step number and ".dat" are added
/// Returns true when the run ended normally, false on a NaN, a refusal or when the program is closing.
bool runSteady2D(MainWindow* window, unsigned threads, double tolU, double tolT, int steps, int saveInterval,
                 const QString& fileName);

/// Runs a transient case for a fixed number of steps. Files are named by the Fourier number; the mean liquid
/// fraction and the mean temperature are written every 100 steps, each line at once, and in the temperature
/// form the fraction follows from the enthalpy as it stands. Of two files with the same Fourier number in six
/// digits the later stays. Deliberate: the run goes on to its end on fields that are not numbers.
/// Returns false on a refusal or when the program is closing, else true.
bool runTransient2D(MainWindow* window, unsigned threads, int steps, int saveInterval,
                    const QString& fileName);

} // namespace fluvane
