// Writes the boundary conditions of one zone into its face records.
#pragma once

#include <cstdint>

namespace fluvane {

/// Faces firstFace .. endFace - 1 of the 2D mesh get density 1, the wall velocity U0 * (ux, uy), the two
/// kinds, the wall liquid fraction and, by thermal kind, the wall temperature (1) or heat flux (2).
/// With any other thermal kind both keep what they held. An empty range changes nothing.
void assignBoundary2D(std::int32_t firstFace, std::int32_t endFace, double ux, double uy,
                      std::int32_t flowKind, std::int32_t thermalKind, double value, double flWall);

/// The same for 3D faces, with a third velocity component and no liquid fraction.
void assignBoundary3D(std::int32_t firstFace, std::int32_t endFace, double ux, double uy, double uz,
                      std::int32_t flowKind, std::int32_t thermalKind, double value);

} // namespace fluvane
