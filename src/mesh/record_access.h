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
    const std::size_t slot = recordTable<Record>().slotOf(part);
    if (slot >= recordTable<Record>().size())
        return nullptr;
    const std::size_t first = (slot * rows + row) * Q;
    if constexpr (std::is_same_v<Pools, CellPools>)
        return (mesh.cellPools.*pool).data() + first;
    else
        return (mesh.facePools.*pool).data() + first;
}

inline std::int32_t* nodesOfCell(const void* part) {
    const std::size_t slot = mesh.cells2D.slotOf(part);
    if (slot >= mesh.cells2D.size())
        return nullptr;
    return mesh.cellNodes2D.data() + slot * std::size_t{CellRecord::maxNodes};
}

inline double* liquidFractionOfWall(const void* part) {
    const std::size_t slot = mesh.faces2D.slotOf(part);
    return slot < mesh.wallLiquidFractions.size() ? mesh.wallLiquidFractions.data() + slot : nullptr;
}

/// The array is made when a number other than 0 is first set.
inline double* liquidFractionToSet(const void* part) {
    if (mesh.faces2D.slotOf(part) < mesh.faces2D.size() &&
        mesh.wallLiquidFractions.size() != mesh.faces2D.size())
        mesh.wallLiquidFractions = HugeArray<double>(mesh.faces2D.size());
    return liquidFractionOfWall(part);
}

/// Where the neighbours of a cell begin in the lists; at their start before they are there.
template <class Record>
std::ptrdiff_t firstNeighbour(const void* part) {
    const std::size_t slot = recordTable<Record>().slotOf(part);
    return slot < mesh.neighbourStart.size() ? mesh.neighbourStart[slot] : 0;
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

} // namespace fluvane
