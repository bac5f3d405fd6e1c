// One time step of the 2D solver.
#pragma once

namespace fluvane {

/// Advances every cell and face by dt in six parallel loops with a barrier after each: collision, gradients,
/// interior faces, boundary faces, recovery, update. Runs on the thread count set for OpenMP; the result is
/// the same bits for every count. Two steps must never run at the same time.
void step2D();

} // namespace fluvane
