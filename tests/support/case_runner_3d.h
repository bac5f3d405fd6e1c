// Sets up and runs real 3D cases through the program's own functions.
#pragma once

#include "velocity/velocity_set.h"

#include <functional>

namespace fluvane::support {

/// One zone's conditions as the 3D boundary wizard would hand them over; the default is an adiabatic wall at
/// rest.
struct Zone3D {
    Vec3 velocity{};
    int flowKind = 0;
    int thermalKind = 0;
    double value = 0.0;
};

/// Writes one zone's conditions into its faces; after the fields were initialised.
void assignZone(int zone, const Zone3D& conditions);

/// Relative change of velocity and temperature in the last step, whichever is larger.
double residual3D();

/// Steps until the residual falls below `tolerance`, looked at every `interval` steps, or `maxSteps` are
/// done. Returns the number of steps; -1 when a NaN turned up.
int runUntilSteady3D(double tolerance, int interval, int maxSteps);

/// A cell field at a point by a least-squares quadratic through the nearest cells.
double sampleAt(Vec3 point, const std::function<double(std::size_t)>& cellValue);

/// What the distributions carry out of the mesh through a zone in a unit of time, by the last step's faces.
double massOutThrough(int zone);
double heatOutThrough(int zone);

} // namespace fluvane::support
