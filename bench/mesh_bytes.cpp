// Adds up the arrays of the mesh.
#include "mesh_bytes.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"

namespace fluvane::bench {

namespace {

std::size_t bytes(const auto&... arrays) {
    return ((arrays.size() * sizeof(*arrays.data())) + ...);
}

std::size_t recordBytes() {
    return bytes(mesh.cells2D, mesh.cells3D, mesh.faces2D, mesh.faces3D, mesh.neighbourStart,
                 mesh.neighbourList, mesh.lsqList2D, mesh.lsqList3D);
}

/// What lies beside the records: corners for result files, liquid fractions at walls, places of a mesh that
/// is stored in another order than its file's.
std::size_t sideBytes() {
    return bytes(mesh.cellNodes2D, mesh.wallLiquidFractions, mesh.neighbourSlots, mesh.faceCellSlots,
                 mesh.cellFaceSlots2D, mesh.cellFaceSlots3D);
}

std::size_t flowBytes() {
    const CellPools& p = mesh.cellPools;
    return bytes(p.fTilde, p.fBarPlus, p.fTildePlus, p.gradFBarPlus, mesh.facePools.fFace);
}

std::size_t heatBytes() {
    const CellPools& p = mesh.cellPools;
    return bytes(p.gTilde, p.gBarPlus, p.gTildePlus, p.gradGBarPlus, mesh.facePools.gFace);
}

} // namespace

std::size_t meshBytes() {
    return bytes(mesh.pointX, mesh.pointY, mesh.pointZ) + recordBytes() + sideBytes() + flowBytes() +
           heatBytes();
}

std::size_t stepBytes() {
    return recordBytes() + (caseSettings.flowOn != 0 ? flowBytes() : 0) +
           (caseSettings.heatOn ? heatBytes() : 0);
}

} // namespace fluvane::bench
