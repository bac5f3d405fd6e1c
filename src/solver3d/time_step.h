// One time step of the 3D solver.
#pragma once

namespace fluvane {

/// Advances every cell and face by dt in five parallel loops with a barrier after each: collision, gradients,
/// interior faces, boundary faces, update. Runs on the thread count set for OpenMP; the result is
/// the same bits for every count. Two steps must never run at the same time.
void step3D();

} // namespace fluvane
