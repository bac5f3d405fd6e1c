// Allocation and bookkeeping of the mesh.
#include "mesh/mesh.h"

#include <algorithm>
#include <utility>

namespace fluvane {

Mesh mesh;

namespace {

std::size_t velocityTotal() {
    return static_cast<std::size_t>(std::max(velocitySet.velocityCount, 0));
}

template <class Face>
RecordTable<Face> facesOf(std::int32_t count, FacePools& pools) {
    const auto n = static_cast<std::size_t>(count);
    const std::size_t Q = velocityTotal();
    pools.fFace = HugeArray<double>(n * Q);
    pools.gFace = HugeArray<double>(n * Q);
    return RecordTable<Face>(n);
}

template <class Cell>
RecordTable<Cell> cellsOf(std::int32_t count, StorageOrder order, std::size_t dimensions, CellPools& p) {
    const auto n = static_cast<std::size_t>(count);
    const std::size_t Q = velocityTotal();
    for (HugeArray<double>* pool :
         {&p.fTilde, &p.fBarPlus, &p.fTildePlus, &p.gTilde, &p.gBarPlus, &p.gTildePlus})
        *pool = HugeArray<double>(n * Q);
    p.gradFBarPlus = HugeArray<double>(n * dimensions * Q);
    p.gradGBarPlus = HugeArray<double>(n * dimensions * Q);
    return RecordTable<Cell>(n, std::move(order));
}

/// The area vector that the second cell of a face keeps for it.
Vec2 secondAreaVector(const void* part) {
    const std::size_t slot = mesh.faces2D.slotOf(part);
    if (slot >= mesh.faces2D.size())
        return {};
    const auto number = static_cast<std::int32_t>(mesh.faces2D.order().number(slot));
    const std::int32_t c1 = mesh.faces2D.data()[slot].c1;
    if (c1 < 0 || c1 >= mesh.cellCount)
        return {};
    const CellRecord& cell = mesh.cells2D[static_cast<std::size_t>(c1)];
    for (std::size_t k = 0; k < cell.faces.size(); ++k)
        if (cell.faces[k] == number)
            return cell.S[k];
    return {};
}

} // namespace

double secondAreaX(const void* part) {
    return secondAreaVector(part).x;
}

double secondAreaY(const void* part) {
    return secondAreaVector(part).y;
}

void Mesh::clear() {
    *this = Mesh{};
}

std::int32_t Mesh::totalFaceCount() const {
    return zoneCount > 0 ? zoneLastFace[static_cast<std::size_t>(zoneCount - 1)] : interiorFaceCount;
}

std::int64_t Mesh::faceLine(std::int32_t face) const {
    const auto next =
        std::upper_bound(faceLineStarts.begin(), faceLineStarts.end(), face,
                         [](std::int32_t index, const FaceLineStart& s) { return index < s.firstFace; });
    if (next == faceLineStarts.begin())
        return 0;
    const FaceLineStart& zone = *(next - 1);
    return zone.firstLine + (face - zone.firstFace);
}

bool Mesh::matchesVelocitySet() const {
    return recordVelocityCount == velocitySet.velocityCount;
}

std::size_t Mesh::bytes() const {
    const std::size_t points = (pointX.size() + pointY.size() + pointZ.size()) * sizeof(double);
    const std::size_t records = faces2D.bytes() + faces3D.bytes() + cells2D.bytes() + cells3D.bytes();
    const std::size_t lists = neighbourStart.size() * sizeof(std::int32_t) + neighbourList.bytes() +
                              lsqList2D.bytes() + lsqList3D.bytes() + cellNodes2D.bytes() +
                              neighbourSlots.bytes() + faceCellSlots.bytes() + cellFaceSlots2D.bytes() +
                              cellFaceSlots3D.bytes();
    return points + records + lists + cellPools.bytes() + facePools.bytes();
}

void Mesh::allocateFaces2D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    faces2D = facesOf<FaceRecord>(count, facePools);
    wallLiquidFractions = {};
}

void Mesh::allocateFaces3D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    faces3D = facesOf<FaceRecord3D>(count, facePools);
}

void Mesh::allocateCells2D(std::int32_t count, StorageOrder order) {
    recordVelocityCount = velocitySet.velocityCount;
    cellCount = count;
    cells2D = cellsOf<CellRecord>(count, std::move(order), 2, cellPools);
    cellNodes2D = HugeArray<std::int32_t>(static_cast<std::size_t>(count) * CellRecord::maxNodes,
                                          [](std::size_t) { return -1; });
}

void Mesh::allocateCells3D(std::int32_t count, StorageOrder order) {
    recordVelocityCount = velocitySet.velocityCount;
    cellCount = count;
    cells3D = cellsOf<CellRecord3D>(count, std::move(order), 3, cellPools);
}

void Mesh::setNeighbours2D(std::vector<std::int32_t> start, HugeArray<std::int32_t> list) {
    neighbourStart = std::move(start);
    neighbourList = std::move(list);
    lsqList2D = HugeArray<Vec2>(neighbourList.size());
}

void Mesh::setNeighbours3D(std::vector<std::int32_t> start, HugeArray<std::int32_t> list) {
    neighbourStart = std::move(start);
    neighbourList = std::move(list);
    lsqList3D = HugeArray<Vec3>(neighbourList.size());
}

} // namespace fluvane
