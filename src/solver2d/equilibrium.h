// Equilibria, forcing and heat source of one discrete velocity, with the settings as they stand.
#pragma once

namespace fluvane {

/// Flow equilibrium w rho (1 + e/RT + e^2/(2 RT^2) - q/(2 RT)), e = xi_k.u, q = u.u (Qian, d'Humieres and
/// Lallemand, Europhys. Lett. 17 (1992) 479).
double feq(int k, double rho, double u, double v);

/// The same polynomial with the temperature in place of the density.
double geqT(int k, double T, double u, double v);

/// Equilibrium of the enthalpy form; index 0 is the rest velocity and carries the excess H - T.
/// With `lftfOn` the moving populations carry the enthalpy.
double geqH(int k, double H, double T, double u, double v);

/// Forcing term feq (xi_k - u).a / RT for the body force a = (Fx, Fy) per unit mass (after Guo, Zheng and
/// Shi, Phys. Rev. E 65 (2002) 046308).
double forcing(int k, double rho, double u, double v, double Fx, double Fy);

/// Volumetric heat source w heatSource (1 + e/RT).
double heatSourceTerm(int k, double u, double v);

} // namespace fluvane
