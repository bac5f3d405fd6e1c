// The one equilibrium polynomial of all distributions, for two and three components, one velocity or a row.
#pragma once

#include "mesh/force_inline.h"

namespace fluvane {

/// The factors of the polynomial, divided out once a step.
struct PolynomialFactors {
    double inverseRT = 0.0;           ///< 1 / RT
    double halfInverseRT = 0.0;       ///< 1 / (2 RT)
    double halfInverseRTSquare = 0.0; ///< 1 / (2 RT^2)
};

FLUVANE_FORCE_INLINE PolynomialFactors polynomialFactors(double RT) {
    return {1.0 / RT, 1.0 / (2.0 * RT), 1.0 / (2.0 * RT * RT)};
}

/// 1 + e/RT + e^2/(2 RT^2) - q/(2 RT) for e = xi.u and q = u.u; `Real` is a number or a row of numbers.
template <class Real>
FLUVANE_FORCE_INLINE Real equilibriumPolynomial(const PolynomialFactors& f, const Real& e, double q) {
    return 1.0 + e * f.inverseRT + e * e * f.halfInverseRTSquare - q * f.halfInverseRT;
}

} // namespace fluvane
