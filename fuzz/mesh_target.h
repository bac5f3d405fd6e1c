// Reads one input as a mesh of either dimension, builds its geometry and checks that all can be followed.
#pragma once

#include "mesh/mesh.h"
#include "one_input.h"

namespace fluvane::fuzz {

/// No more memory than this for each byte of a file, with three velocities: the shortest 2D face line has
/// eight bytes and may name two cells.
constexpr std::size_t mostBytesPerByte = 1024;

inline bool isEmpty() {
    return mesh.pointCount == 0 && mesh.cellCount == 0 && mesh.totalFaceCount() == 0 && mesh.pointX.empty() &&
           mesh.faces2D.empty() && mesh.cells2D.empty() && mesh.faces3D.empty() && mesh.cells3D.empty() &&
           mesh.zoneNames.empty() && mesh.neighbourList.empty();
}

template <class Cells, class Faces>
void checkIndices(const Cells& cells, const Faces& faces) {
    const auto isCell = [](std::int32_t c) { return c >= 0 && c < mesh.cellCount; };
    for (const auto& cell : cells) {
        expect(cell.faceCount >= 0 && cell.faceCount <= cell.maxFaces,
               "a cell has the faces it has room for");
        for (std::int32_t k = 0; k < cell.faceCount; ++k) {
            const std::int32_t face = cell.faces[static_cast<std::size_t>(k)];
            expect(face >= 0 && face < mesh.totalFaceCount(), "a cell's faces exist");
        }
        for (std::int32_t k = 0; k < cell.nodeCount; ++k) {
            const std::int32_t node = cell.nodes[static_cast<std::size_t>(k)];
            expect(node >= 0 && node < mesh.pointCount, "a cell's nodes exist");
        }
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j)
            expect(isCell(cell.neighbours[static_cast<std::size_t>(j)]), "a cell's neighbours exist");
    }
    for (const auto& face : faces)
        expect(isCell(face.c0) && (face.c1 == -1 || isCell(face.c1)), "a face's cells exist");
}

/// One input, read by `read` and prepared by `build`. `keepsRefused`: a refused geometry may stay for
/// inspection.
template <class Check>
void tryMesh(const std::uint8_t* data, std::size_t size, bool (*read)(const QString&), bool (*build)(Storage),
             bool keepsRefused, const Check& check) {
    constexpr Storage storages[] = {Storage::automatic, Storage::alongCurve, Storage::asNumbered};
    if (!read(fileOf(data, size))) {
        expect(checkedProblems() == 1, "a refused file is refused in one line");
        expect(isEmpty(), "a refused mesh is gone");
        return;
    }
    checkedProblems();
    expect(mesh.bytes() <= mostBytesPerByte * size, "memory is bounded by the size of the file");
    if (!build(storages[size % 3])) {
        expect(checkedProblems() == 1, "a refused geometry is refused in one line");
        expect(keepsRefused || isEmpty(), "a refused mesh is gone");
    } else {
        checkedProblems();
    }
    expect(mesh.bytes() <= mostBytesPerByte * size, "memory is bounded by the size of the file");
    check();
    mesh.clear();
}

} // namespace fluvane::fuzz
