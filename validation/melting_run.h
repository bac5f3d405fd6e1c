// A melting or freezing case as a user sets it up, stepped from moment to moment.
#pragma once

#include "plane_run.h"
#include "support/melting.h"

#include <functional>

namespace fluvane::validation {

/// The plane set-up's flow, numbers and scale are taken from `physics`.
struct MeltingSetUp {
    support::MeltingPhysics physics;
    std::vector<support::Zone> zones;
};

/// The lines of a report that tell what to type; "Time Steps" is that of a run of this many.
QStringList describe(const PlaneMesh& plane, const MeltingSetUp& setUp, int steps);

/// Sets the case up as the windows do, confirming the physics window twice, and calls `advance`, which steps
/// and returns how many steps it took; then writes the result file. The process state is that of the end.
Run runMelting(const Context& context, const QString& name, const PlaneMesh& plane, const MeltingSetUp& setUp,
               const std::function<int()>& advance);

} // namespace fluvane::validation
