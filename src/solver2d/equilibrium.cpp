// Equilibria, forcing and heat source of one velocity with the process-wide settings.
#include "solver2d/equilibrium.h"

#include "dialogs/case_settings.h"
#include "solver2d/equilibrium_polynomial.h"
#include "velocity/velocity_set.h"

namespace fluvane {

namespace {

double projection(int k, double u, double v) {
    const Vec2& xi = velocitySet.xi2D[static_cast<std::size_t>(k)];
    return xi.x * u + xi.y * v;
}

double weight(int k) {
    return velocitySet.weights[static_cast<std::size_t>(k)];
}

double polynomial(int k, double u, double v) {
    return equilibriumPolynomial(polynomialFactors(caseSettings.RT), projection(k, u, v), u * u + v * v);
}

} // namespace

double feq(int k, double rho, double u, double v) {
    return weight(k) * rho * polynomial(k, u, v);
}

double geqT(int k, double T, double u, double v) {
    return feq(k, T, u, v);
}

double geqH(int k, double H, double T, double u, double v) {
    const double w = weight(k);
    const double restPart = (u * u + v * v) / (2.0 * caseSettings.RT);
    if (caseSettings.lftfOn) {
        if (k == 0)
            return w * T + (H - T) - restPart * w * H;
        return w * H * polynomial(k, u, v) + w * (T - H);
    }
    if (k == 0)
        return w * T * (1.0 - restPart) + (H - T);
    return w * T * polynomial(k, u, v);
}

double forcing(int k, double rho, double u, double v, double Fx, double Fy) {
    const Vec2& xi = velocitySet.xi2D[static_cast<std::size_t>(k)];
    return feq(k, rho, u, v) * ((xi.x - u) * Fx + (xi.y - v) * Fy) / caseSettings.RT;
}

double heatSourceTerm(int k, double u, double v) {
    return weight(k) * caseSettings.heatSource * (1.0 + projection(k, u, v) / caseSettings.RT);
}

} // namespace fluvane
