// Has the field stopped changing, and is it still finite?
#pragma once

#include <QString>

namespace fluvane {

/// Relative changes of velocity and temperature in the last step; says them as one terminal line that begins
/// with `prefix`. True when both lie below their tolerances (strictly). Deliberate: the temperature sums are
/// weighted by the squared cell area, the velocity sums are not.
bool checkConvergence2D(double tolU, double tolT, const QString& prefix);

/// Looks for a NaN in rho or T of the cells, in order; writes "-nanf" and the index of the first to standard
/// output.
bool hasNaN();

} // namespace fluvane
