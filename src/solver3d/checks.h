// Has the 3D field stopped changing?
#pragma once

#include <QString>

namespace fluvane {

/// Relative changes of velocity and temperature in the last step; says them as one terminal line that begins
/// with `prefix`. True when both lie below 1e-9 (strictly). Deliberate: the threshold is fixed and the sums
/// are not weighted by the cells' size.
bool checkConvergence3D(const QString& prefix);

} // namespace fluvane
