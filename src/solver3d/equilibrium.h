// Equilibria and forcing of one 3D velocity, with the settings as they stand.
#pragma once

namespace fluvane {

/// Flow equilibrium w rho (1 + e/RT + e^2/(2 RT^2) - q/(2 RT)), e = xi_k.u, q = u.u (Qian, d'Humieres and
/// Lallemand, Europhys. Lett. 17 (1992) 479).
double feq3D(int k, double rho, double u, double v, double w);

/// The same polynomial with the temperature in place of the density.
double geqT3D(int k, double T, double u, double v, double w);

/// Forcing term feq (xi_k - u).a / RT for the body force a per unit mass (after Guo, Zheng and Shi, Phys.
/// Rev. E 65 (2002) 046308).
double forcing3D(int k, double rho, double u, double v, double w, double Fx, double Fy, double Fz);

} // namespace fluvane
