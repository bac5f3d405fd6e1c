// Goes through a melting case as the windows do.
#include "melting_run.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/result_file.h"
#include "require.h"
#include "solver2d/run_support.h"

#include <QDir>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace fluvane::validation {

namespace {

PlaneSetUp planeSetUp(const MeltingSetUp& m) {
    PlaneSetUp s;
    s.flowKind = m.physics.flowKind;
    s.heat = true;
    s.L = m.physics.L;
    s.Ma = m.physics.Ma;
    s.Pr = m.physics.PrOrAlpha;
    s.ReOrRa = m.physics.Ra;
    s.zones = m.zones;
    s.afterBoundary = [m] {
        support::confirmMelting(m.physics);
        for (std::size_t z = 0; z < m.zones.size(); ++z)
            support::assignZone(static_cast<int>(z), m.zones[z]);
    };
    return s;
}

bool allFinite() {
    return std::all_of(mesh.cells2D.begin(), mesh.cells2D.end(), [](const CellRecord& c) {
        return std::isfinite(c.H) && std::isfinite(c.u) && std::isfinite(c.v);
    });
}

} // namespace

QStringList describe(const PlaneMesh& plane, const MeltingSetUp& m, int steps) {
    QStringList lines = describe(plane, planeSetUp(m));
    const bool lftf = m.physics.variant == support::phaseLftf;
    lines[2] +=
        QString(", \"Phase change\" \"%1\", \"Time type\" \"Transient\"; \"Ok\", lattice window again")
            .arg(lftf ? "LFTF" : "Considered");
    lines.insert(3, QString("\"Phase Change\": \"Solidus temperature\" and \"Liquidus temperature\" %1, "
                            "\"Stefan number\" %2, \"Initial liquid fraction\" 0; physics window \"Ok\"")
                        .arg(number(m.physics.meltingPoint), number(m.physics.Ste)));
    lines.last() = QString("Compute: \"Time Steps\" %1").arg(steps);
    return lines;
}

Run runMelting(const Context& context, const QString& name, const PlaneMesh& plane, const MeltingSetUp& m,
               const std::function<int()>& advance) {
    const PlaneSetUp setUp = planeSetUp(m);
    prepare(context, name, plane, setUp);
    require(setThreads(context.threads), "the threads asked for");
    Run run;
    run.name = name;
    run.mesh = plane.words;
    run.cells = mesh.cellCount;
    run.Ma = setUp.Ma;
    run.CFL = setUp.CFL;
    const auto start = std::chrono::steady_clock::now();
    run.steps = advance();
    run.resultFile = QString("%1_%2.dat").arg(name).arg(support::fourierNumber(run.steps));
    run.ended = writeResult2D(QDir(context.folder).filePath(run.resultFile)) && allFinite();
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%s: %d steps, %.1f s%s\n", qPrintable(name), run.steps, run.seconds,
                run.ended ? "" : ", BROKEN OFF");
    std::fflush(stdout);
    return run;
}

} // namespace fluvane::validation
