// How the members of records that hold nothing find what they name in the mesh.
#pragma once

#include "mesh/mesh.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace fluvane {

/// The table of the mesh that holds records of a kind.
template <class Record>
RecordTable<Record>& recordTable() {
    if constexpr (std::is_same_v<Record, CellRecord>)
        return mesh.cells2D;
    else if constexpr (std::is_same_v<Record, CellRecord3D>)
        return mesh.cells3D;
    else if constexpr (std::is_same_v<Record, FaceRecord>)
        return mesh.faces2D;
    else
        return mesh.faces3D;
}

template <class Record, class Pools, HugeArray<double> Pools::*pool, std::size_t rows, std::size_t row>
double* poolRow(const void* part) {
    const auto Q = static_cast<std::size_t>(std::max(mesh.recordVelocityCount, 0));
    const std::size_t first = (recordTable<Record>().slotOf(part) * rows + row) * Q;
    if constexpr (std::is_same_v<Pools, CellPools>)
        return (mesh.cellPools.*pool).data() + first;
    else
        return (mesh.facePools.*pool).data() + first;
}

/// Where the neighbours of a cell begin in the lists; at their start before they are there.
template <class Record>
std::ptrdiff_t firstNeighbour(const void* part) {
    return mesh.neighbourStart.empty() ? 0 : mesh.neighbourStart[recordTable<Record>().slotOf(part)];
}

template <class Record>
std::int32_t* neighboursOf(const void* part) {
    return mesh.neighbourList.data() + firstNeighbour<Record>(part);
}

template <class Record, class Weight>
Weight* weightsOf(const void* part) {
    if constexpr (std::is_same_v<Weight, Vec2>)
        return mesh.lsqList2D.data() + firstNeighbour<Record>(part);
    else
        return mesh.lsqList3D.data() + firstNeighbour<Record>(part);
}

inline std::array<std::int32_t, 4>& nodesOfCell(const void* part) {
    return mesh.cells2D.apart.nodes[mesh.cells2D.slotOf(part)].list;
}

inline Apart<FaceRecord>::Ends& endsOfFace(const void* part) {
    return mesh.faces2D.apart.ends[mesh.faces2D.slotOf(part)];
}

inline Apart<FaceRecord>::Wall& wallOfFace(const void* part) {
    return mesh.faces2D.apart.walls[mesh.faces2D.slotOf(part)];
}

inline std::int32_t& firstNodeOfFace(const void* part) {
    return endsOfFace(part).n0;
}

inline std::int32_t& secondNodeOfFace(const void* part) {
    return endsOfFace(part).n1;
}

inline double& lengthOfFace(const void* part) {
    return mesh.faces2D.apart.lengths[mesh.faces2D.slotOf(part)];
}

inline double& heatFluxOfFace(const void* part) {
    return wallOfFace(part).q;
}

inline double& liquidFractionOfFace(const void* part) {
    return wallOfFace(part).fl;
}

inline std::int32_t& thermalKindOfFace(const void* part) {
    return wallOfFace(part).thermalKind;
}

inline std::int32_t& flowKindOfFace(const void* part) {
    return wallOfFace(part).flowKind;
}

} // namespace fluvane
