// Has the field stopped changing, and is it still finite?
#pragma once

#include <QString>

namespace fluvane {

/// Squared changes of a field in the last step, and the squares that they are relative to.
struct ChangeSums {
    double numU = 0.0;
    double denU = 0.0;
    double numT = 0.0;
    double denT = 0.0;
};

/// Says the relative changes as one terminal line that begins with `prefix`; true when both lie below their
/// tolerances (strictly). What the checks of both dimensions end with.
bool reportChange(const ChangeSums& sums, double tolU, double tolT, const QString& prefix);

/// Relative changes of velocity and temperature in the last step; says them as one terminal line that begins
/// with `prefix`. True when both lie below their tolerances (strictly). Deliberate: the temperature sums are
/// weighted by the squared cell area, the velocity sums are not.
bool checkConvergence2D(double tolU, double tolT, const QString& prefix);

/// Looks for a NaN in rho or T of the cells, in order; writes "-nanf" and the index of the first to standard
/// output.
bool hasNaN();

} // namespace fluvane
