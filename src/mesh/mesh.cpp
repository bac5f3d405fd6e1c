// Allocation and bookkeeping of the mesh.
#include "mesh/mesh.h"

#include <algorithm>
#include <utility>

namespace fluvane {

Mesh mesh;

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
    const auto n = static_cast<std::size_t>(count);
    const auto Q = static_cast<std::size_t>(std::max(velocitySet.velocityCount, 0));
    recordVelocityCount = velocitySet.velocityCount;
    faces2D = HugeArray<FaceRecord>(n);
    facePools.fFace = HugeArray<double>(n * Q);
    facePools.gFace = HugeArray<double>(n * Q);
    for (std::size_t i = 0; i < n; ++i) {
        faces2D[i].fFace = facePools.fFace.data() + i * Q;
        faces2D[i].gFace = facePools.gFace.data() + i * Q;
    }
}

void Mesh::allocateCells2D(std::int32_t count) {
    const auto n = static_cast<std::size_t>(count);
    const auto Q = static_cast<std::size_t>(std::max(velocitySet.velocityCount, 0));
    recordVelocityCount = velocitySet.velocityCount;
    cellCount = count;
    cells2D = HugeArray<CellRecord>(n);
    CellPools& p = cellPools;
    for (HugeArray<double>* pool :
         {&p.fTilde, &p.fBarPlus, &p.fTildePlus, &p.gTilde, &p.gBarPlus, &p.gTildePlus})
        *pool = HugeArray<double>(n * Q);
    p.gradFBarPlus = HugeArray<double>(n * 2 * Q);
    p.gradGBarPlus = HugeArray<double>(n * 2 * Q);
    for (std::size_t i = 0; i < n; ++i) {
        CellRecord& c = cells2D[i];
        c.fTilde = p.fTilde.data() + i * Q;
        c.fBarPlus = p.fBarPlus.data() + i * Q;
        c.fTildePlus = p.fTildePlus.data() + i * Q;
        c.gTilde = p.gTilde.data() + i * Q;
        c.gBarPlus = p.gBarPlus.data() + i * Q;
        c.gTildePlus = p.gTildePlus.data() + i * Q;
        double* const gradF = p.gradFBarPlus.data() + i * 2 * Q;
        double* const gradG = p.gradGBarPlus.data() + i * 2 * Q;
        c.gradFBarPlus = {gradF, gradF + Q};
        c.gradGBarPlus = {gradG, gradG + Q};
    }
}

void Mesh::allocateNeighbours2D(std::vector<std::int32_t> start) {
    neighbourStart = std::move(start);
    const auto total = static_cast<std::size_t>(neighbourStart.empty() ? 0 : neighbourStart.back());
    neighbourList = HugeArray<std::int32_t>(total);
    lsqList2D = HugeArray<Vec2>(total);
    for (std::size_t i = 0; i + 1 < neighbourStart.size(); ++i) {
        CellRecord& c = cells2D[i];
        const auto first = static_cast<std::size_t>(neighbourStart[i]);
        c.neighbourCount = neighbourStart[i + 1] - neighbourStart[i];
        c.neighbours = neighbourList.data() + first;
        c.lsq = lsqList2D.data() + first;
    }
}

} // namespace fluvane
