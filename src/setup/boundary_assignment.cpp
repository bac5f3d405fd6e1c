// The boundary assignment of both dimensions.
#include "setup/boundary_assignment.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"

#include <algorithm>

namespace fluvane {

namespace {

constexpr std::int32_t constantTemperature = 1;
constexpr std::int32_t constantFlux = 2;

/// What both dimensions store. Deliberate: any other thermal kind leaves temperature and flux as they were,
/// so that a zone made adiabatic keeps its old wall temperature.
template <class Face>
void assignCommon(Face& face, double ux, double uy, std::int32_t flowKind, std::int32_t thermalKind,
                  double value) {
    face.rho = 1.0;
    face.u = caseSettings.U0 * ux;
    face.v = caseSettings.U0 * uy;
    face.thermalKind = thermalKind;
    face.flowKind = flowKind;
    if (thermalKind == constantTemperature)
        face.T = value;
    else if (thermalKind == constantFlux)
        face.q = value;
}

} // namespace

void assignBoundary2D(std::int32_t firstFace, std::int32_t endFace, double ux, double uy,
                      std::int32_t flowKind, std::int32_t thermalKind, double value, double flWall) {
    const auto first = static_cast<std::size_t>(std::max(firstFace, 0));
    const auto end = std::min(static_cast<std::size_t>(std::max(endFace, 0)), mesh.faces2D.size());
    for (std::size_t i = first; i < end; ++i) {
        FaceRecord& face = mesh.faces2D[i];
        assignCommon(face, ux, uy, flowKind, thermalKind, value);
        face.fl = flWall;
    }
}

void assignBoundary3D(std::int32_t firstFace, std::int32_t endFace, double ux, double uy, double uz,
                      std::int32_t flowKind, std::int32_t thermalKind, double value) {
    const auto first = static_cast<std::size_t>(std::max(firstFace, 0));
    const auto end = std::min(static_cast<std::size_t>(std::max(endFace, 0)), mesh.faces3D.size());
    for (std::size_t i = first; i < end; ++i) {
        FaceRecord3D& face = mesh.faces3D[i];
        assignCommon(face, ux, uy, flowKind, thermalKind, value);
        face.w = caseSettings.U0 * uz;
    }
}

} // namespace fluvane
