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
HugeArray<Face> facesOf(std::int32_t count, FacePools& pools) {
    const auto n = static_cast<std::size_t>(count);
    const std::size_t Q = velocityTotal();
    HugeArray<Face> faces(n);
    pools.fFace = HugeArray<double>(n * Q);
    pools.gFace = HugeArray<double>(n * Q);
    for (std::size_t i = 0; i < n; ++i) {
        faces[i].fFace = pools.fFace.data() + i * Q;
        faces[i].gFace = pools.gFace.data() + i * Q;
    }
    return faces;
}

GradientSlice2D sliceOf(const GradientSlice2D&, double* first, std::size_t Q) {
    return {first, first + Q};
}

GradientSlice3D sliceOf(const GradientSlice3D&, double* first, std::size_t Q) {
    return {first, first + Q, first + 2 * Q};
}

template <class Cell>
HugeArray<Cell> cellsOf(std::int32_t count, std::size_t dimensions, CellPools& p) {
    const auto n = static_cast<std::size_t>(count);
    const std::size_t Q = velocityTotal();
    HugeArray<Cell> cells(n);
    for (HugeArray<double>* pool :
         {&p.fTilde, &p.fBarPlus, &p.fTildePlus, &p.gTilde, &p.gBarPlus, &p.gTildePlus})
        *pool = HugeArray<double>(n * Q);
    p.gradFBarPlus = HugeArray<double>(n * dimensions * Q);
    p.gradGBarPlus = HugeArray<double>(n * dimensions * Q);
    for (std::size_t i = 0; i < n; ++i) {
        Cell& c = cells[i];
        c.fTilde = p.fTilde.data() + i * Q;
        c.fBarPlus = p.fBarPlus.data() + i * Q;
        c.fTildePlus = p.fTildePlus.data() + i * Q;
        c.gTilde = p.gTilde.data() + i * Q;
        c.gBarPlus = p.gBarPlus.data() + i * Q;
        c.gTildePlus = p.gTildePlus.data() + i * Q;
        c.gradFBarPlus = sliceOf(c.gradFBarPlus, p.gradFBarPlus.data() + i * dimensions * Q, Q);
        c.gradGBarPlus = sliceOf(c.gradGBarPlus, p.gradGBarPlus.data() + i * dimensions * Q, Q);
    }
    return cells;
}

template <class Cell, class Weight>
void makeNeighbourSlices(const std::vector<std::int32_t>& start, HugeArray<Cell>& cells,
                         HugeArray<std::int32_t>& neighbours, HugeArray<Weight>& weights) {
    const auto total = static_cast<std::size_t>(start.empty() ? 0 : start.back());
    neighbours = HugeArray<std::int32_t>(total);
    weights = HugeArray<Weight>(total);
    for (std::size_t i = 0; i + 1 < start.size(); ++i) {
        Cell& c = cells[i];
        const auto first = static_cast<std::size_t>(start[i]);
        c.neighbourCount = start[i + 1] - start[i];
        c.neighbours = neighbours.data() + first;
        c.lsq = weights.data() + first;
    }
}

} // namespace

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

void Mesh::allocateFaces2D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    faces2D = facesOf<FaceRecord>(count, facePools);
}

void Mesh::allocateFaces3D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    faces3D = facesOf<FaceRecord3D>(count, facePools);
}

void Mesh::allocateCells2D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    cellCount = count;
    cells2D = cellsOf<CellRecord>(count, 2, cellPools);
}

void Mesh::allocateCells3D(std::int32_t count) {
    recordVelocityCount = velocitySet.velocityCount;
    cellCount = count;
    cells3D = cellsOf<CellRecord3D>(count, 3, cellPools);
}

void Mesh::allocateNeighbours2D(std::vector<std::int32_t> start) {
    neighbourStart = std::move(start);
    makeNeighbourSlices(neighbourStart, cells2D, neighbourList, lsqList2D);
}

void Mesh::allocateNeighbours3D(std::vector<std::int32_t> start) {
    neighbourStart = std::move(start);
    makeNeighbourSlices(neighbourStart, cells3D, neighbourList, lsqList3D);
}

} // namespace fluvane
