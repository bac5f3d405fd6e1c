// The series of fully developed flow in a square duct.
#pragma once

#include <cmath>
#include <numbers>

namespace fluvane::support {

/// Velocity at (y, z) in a duct of side 1 with a corner in the origin, in units of its mean (White, Viscous
/// Fluid Flow).
inline double squareDuct(double y, double z) {
    constexpr double pi = std::numbers::pi;
    double u = 0.0, mean = 0.0;
    for (int i = 1; i < 60; i += 2) {
        const double sign = i % 4 == 1 ? 1.0 : -1.0;
        const double cube = std::pow(i, -3.0);
        u += sign * cube * std::cos(i * pi * (y - 0.5)) *
             (1.0 - std::cosh(i * pi * (z - 0.5)) / std::cosh(i * pi / 2.0));
        mean += std::pow(i, -5.0) * std::tanh(i * pi / 2.0);
    }
    // u carries the factor 4/pi^3, the mean 1/12 (1 - 192/pi^5 sum).
    return 4.0 / (pi * pi * pi) * u / ((1.0 - 192.0 / std::pow(pi, 5.0) * mean) / 12.0);
}

} // namespace fluvane::support
