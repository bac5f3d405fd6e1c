// A reproducible state in which no term of the scheme vanishes by accident.
#pragma once

namespace fluvane::support {

/// Fills every cell's moments and distributions and every face's moments with numbers near equilibrium plus
/// noise, from a fixed seed; rest and wall values of boundary faces included.
void fillRandomState(unsigned seed);

/// Settings of a case with lattice RT = 1/3, small relaxation times and a small time step, nothing switched
/// on.
void usePlainSettings(double dt);

} // namespace fluvane::support
