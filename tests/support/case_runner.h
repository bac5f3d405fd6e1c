// Sets up and runs real cases through the program's own functions.
#pragma once

#include <functional>

namespace fluvane::support {

/// One zone's conditions as the boundary wizard would hand them over; the default is an adiabatic wall at
/// rest.
struct Zone {
    double ux = 0.0;
    double uy = 0.0;
    int flowKind = 0;
    int thermalKind = 0;
    double value = 0.0;
};

inline Zone movingWall(double ux, double uy) {
    return {ux, uy, 0, 0, 0.0};
}
inline Zone outflowZone() {
    return {0.0, 0.0, 2, 0, 0.0};
}
inline Zone wallAt(double T) {
    return {0.0, 0.0, 0, 1, T};
}
inline Zone wallWithFlux(double q) {
    return {0.0, 0.0, 0, 2, q};
}

/// Lattice properties with RT = 1/3; the velocity set and the mesh must be there.
void useLattice(double CFL);

/// Writes one zone's conditions into its faces; after the fields were initialised.
void assignZone(int zone, const Zone& conditions);

/// Steps until both residuals fall below `tolerance`, looked at every `interval` steps, or `maxSteps` are
/// done. Returns the number of steps; -1 when a NaN turned up.
int runUntilSteady(double tolerance, int interval, int maxSteps);

/// A cell field at a point by a least-squares plane through the nearest cells.
double sampleAt(double x, double y, const std::function<double(std::size_t)>& cellValue);

/// Mean of -dT/dx * L / dT over the wall x = 0 of a structured box of n by n equal cells numbered row by row,
/// by the one-sided quadratic through the wall value and two cells.
double leftWallNusselt(int n, double wallTemperature);

} // namespace fluvane::support
