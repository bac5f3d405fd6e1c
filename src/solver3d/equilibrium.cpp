// Equilibria and forcing of one 3D velocity with the process-wide settings.
#include "solver3d/equilibrium.h"

#include "dialogs/case_settings.h"
#include "solver2d/equilibrium_polynomial.h"
#include "velocity/velocity_set.h"

namespace fluvane {

double feq3D(int k, double rho, double u, double v, double w) {
    const auto i = static_cast<std::size_t>(k);
    const Vec3& xi = velocitySet.xi3D[i];
    const double e = xi.x * u + xi.y * v + xi.z * w;
    return velocitySet.weights[i] * rho *
           equilibriumPolynomial(polynomialFactors(caseSettings.RT), e, u * u + v * v + w * w);
}

double geqT3D(int k, double T, double u, double v, double w) {
    return feq3D(k, T, u, v, w);
}

double forcing3D(int k, double rho, double u, double v, double w, double Fx, double Fy, double Fz) {
    const Vec3& xi = velocitySet.xi3D[static_cast<std::size_t>(k)];
    return feq3D(k, rho, u, v, w) * ((xi.x - u) * Fx + (xi.y - v) * Fy + (xi.z - w) * Fz) / caseSettings.RT;
}

} // namespace fluvane
