// The driver of a 3D case.
#include "solver3d/drivers.h"

#include "output/result_file.h"
#include "solver2d/run_support.h"
#include "solver3d/checks.h"
#include "solver3d/time_step.h"

namespace fluvane {

bool run3D(MainWindow*, unsigned threads, double, double, int steps, int saveInterval,
           const QString& fileName) {
    if (!canRun(true, saveInterval) || !setThreads(threads))
        return false;
    SteadyRun run;
    run.step = step3D;
    run.save = [](const QString& path) { saveInstant(path, captureResult3D, writeResult3D); };
    run.check = checkConvergence3D;
    run.steps = steps;
    run.saveInterval = saveInterval;
    run.base = baseName(fileName);
    // Deliberate: the other way round than in two dimensions; a NaN ends every run without a word.
    run.repeatsUnlimited = false;
    run.namesNaN = false;
    return runSteadily(run);
}

} // namespace fluvane
