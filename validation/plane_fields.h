// Figures read off the 2D fields: values and slopes at points, sums over cells, what a zone lets through.
#pragma once

#include "mesh/mesh.h"

#include <cstddef>
#include <functional>
#include <optional>

namespace fluvane::validation {

using CellValue = std::function<double(const CellRecord&)>;
/// The value that a boundary face prescribes, if it does.
using FaceValue = std::function<std::optional<double>(const FaceRecord&)>;

struct FitAt {
    double value = 0.0;
    double dx = 0.0;
    double dy = 0.0;
};

/// A field about a point by a weighted least-squares cubic through the cells around it and the prescribed
/// values of their boundary faces; exact for cubics on any mesh. Lengths are measured in the local cells'
/// extents, so that stretched cells count alike. The point lies in or near the mesh.
FitAt fitAt(double x, double y, const CellValue& cellValue, const FaceValue& faceValue);

/// Velocity in units of U0, and temperature, with the values of walls at rest or moving and of walls at
/// constant temperature.
FitAt uAt(double x, double y);
FitAt vAt(double x, double y);
FitAt temperatureAt(double x, double y);

/// Sum of density times area over the cells, and likewise of any cell value.
double totalMass();
double integral(const CellValue& cellValue);

/// First face of a zone and one past its last.
std::pair<std::int32_t, std::int32_t> facesOfZone(int zone);

/// What the distributions of the last step carry out of the mesh through a zone in a unit of time.
double massOutThrough(int zone);
double heatOutThrough(int zone);

/// Largest value of `value` over a stretch [low, high], and where: by golden section about the largest of
/// `samples` equally spaced values.
struct Extreme {
    double value = 0.0;
    double place = 0.0;
};
Extreme maximumOf(const std::function<double(double)>& value, double low, double high, int samples);

} // namespace fluvane::validation
