// Cells and their neighbours from the faces of a mesh: what the geometry passes of both dimensions share.
#pragma once

#include "mesh/mesh.h"

#include <QString>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace fluvane {

/// Above every face and cell index: the start of a search for the lowest one.
constexpr std::int32_t noIndex = std::numeric_limits<std::int32_t>::max();

/// The records of a 2D mesh.
struct Records2D {
    using Face = FaceRecord;
    using Cell = CellRecord;
    using Nodes = std::array<std::int32_t, 2>;
    static constexpr const char* faceNodes = "nodes";
    static constexpr const char* cellLimits = "at most four faces and four nodes a cell, found a fifth";

    static Face& face(std::int32_t i) { return mesh.faces2D[static_cast<std::size_t>(i)]; }
    static Cell& cell(std::int32_t c) { return mesh.cells2D[static_cast<std::size_t>(c)]; }
    static Nodes nodesOf(const Face& f) { return {f.n0, f.n1}; }
    /// A cell takes from each face the node at which the face starts as seen from the cell.
    static std::span<const std::int32_t> nodesForFirst(const Face& f) { return {&f.n0, 1}; }
    static std::span<const std::int32_t> nodesForSecond(const Face& f) { return {&f.n1, 1}; }
    static void allocateNeighbours(std::vector<std::int32_t> start) {
        mesh.allocateNeighbours2D(std::move(start));
    }
};

/// The records of a 3D mesh. Whoever asks for a face's nodes has checked that there are three or four.
struct Records3D {
    using Face = FaceRecord3D;
    using Cell = CellRecord3D;
    using Nodes = std::span<const std::int32_t>;
    static constexpr const char* faceNodes = "three or four nodes";
    static constexpr const char* cellLimits = "at most six faces and eight nodes a cell, found one more";

    static Face& face(std::int32_t i) { return mesh.faces3D[static_cast<std::size_t>(i)]; }
    static Cell& cell(std::int32_t c) { return mesh.cells3D[static_cast<std::size_t>(c)]; }
    static Nodes nodesOf(const Face& f) { return {f.nodes.data(), static_cast<std::size_t>(f.nodeCount)}; }
    /// Unlike in 2D, all nodes of a face go to both cells.
    static Nodes nodesForFirst(const Face& f) { return nodesOf(f); }
    static Nodes nodesForSecond(const Face& f) { return nodesOf(f); }
    static void allocateNeighbours(std::vector<std::int32_t> start) {
        mesh.allocateNeighbours3D(std::move(start));
    }
};

/// "line 12, cell 3", numbers as in the file.
QString placeOf(std::int32_t face, std::int32_t cell);

/// Empties the mesh, says one problem line and returns false.
bool refuseMesh(const QString& place, const QString& complaint);

/// Refuses a highest cell index for which the faces have too few sides.
bool checkHighestCell(std::int32_t highest);

/// Refuses a face whose nodes or cells cannot be followed.
bool refuseFace(std::int32_t face, const char* expectedNodes, std::span<const std::int32_t> nodes,
                std::int32_t c0, std::int32_t c1, std::int32_t cells);

/// How many cells have a flaw, and the first of them.
struct FlawedCells {
    std::int32_t count = 0;
    std::int32_t first = noIndex;

    void add(std::int32_t c) {
        ++count;
        first = std::min(first, c);
    }
    void add(const FlawedCells& other) {
        count += other.count;
        first = std::min(first, other.first);
    }
};
#pragma omp declare reduction(addFlaws:FlawedCells : omp_out.add(omp_in))

/// Says a flaw, how many cells have it and where the first one is; nothing without such a cell. `firstFace`
/// is the first face of `flawed.first`.
void reportCells(const FlawedCells& flawed, std::int32_t firstFace, const QString& flaw);

template <class Records>
void reportCells(const FlawedCells& flawed, const QString& flaw) {
    if (flawed.count > 0)
        reportCells(flawed, Records::cell(flawed.first).faces[0], flaw);
}

/// The highest cell index that the interior faces name. Deliberate: a face's second cell is looked at only
/// when its first cell does not raise the maximum.
template <class Records>
std::int32_t highestCell() {
    std::int32_t m = 0;
    for (std::int32_t i = 0; i < mesh.interiorFaceCount; ++i) {
        const auto& face = Records::face(i);
        if (face.c0 > m)
            m = face.c0;
        else if (face.c1 > m)
            m = face.c1;
    }
    return m;
}

inline bool hasNodeCount(const FaceRecord&) {
    return true;
}

inline bool hasNodeCount(const FaceRecord3D& face) {
    return face.nodeCount == 3 || face.nodeCount == 4;
}

/// Whether all indices of a face can be followed.
template <class Records>
bool isSound(const typename Records::Face& face, bool interior, std::int32_t cells) {
    const auto isCell = [cells](std::int32_t c) { return c >= 0 && c < cells; };
    if (!hasNodeCount(face) || !isCell(face.c0) || !(interior ? isCell(face.c1) : face.c1 == -1))
        return false;
    for (const std::int32_t n : Records::nodesOf(face))
        if (n < 0 || n >= mesh.pointCount)
            return false;
    return true;
}

template <class Records>
bool checkFaces(std::int32_t cells) {
    const std::int32_t F = mesh.totalFaceCount();
    std::int32_t firstBad = noIndex;
#pragma omp parallel for schedule(static) reduction(min : firstBad)
    for (std::int32_t i = 0; i < F; ++i)
        if (!isSound<Records>(Records::face(i), i < mesh.interiorFaceCount, cells))
            firstBad = std::min(firstBad, i);
    if (firstBad == noIndex)
        return true;
    const auto& face = Records::face(firstBad);
    if (!hasNodeCount(face))
        return refuseFace(firstBad, Records::faceNodes, {}, face.c0, face.c1, cells);
    const auto nodes = Records::nodesOf(face);
    return refuseFace(firstBad, Records::faceNodes, nodes, face.c0, face.c1, cells);
}

/// The cells across the face slots of every cell, -1 for none: what the neighbour lists are made of, in a few
/// bytes a cell instead of a walk through the records.
template <class Records>
struct AcrossFaces {
    std::array<std::int32_t, Records::Cell::maxFaces> cells;
    AcrossFaces() { cells.fill(-1); }
};

template <class Records>
using AcrossTable = HugeArray<AcrossFaces<Records>>;

/// Gives a cell a face, with the cell across it; false when it has all it can have.
template <class Records>
bool attachFace(AcrossTable<Records>& across, std::int32_t cell, std::int32_t face, std::int32_t other) {
    auto& record = Records::cell(cell);
    if (record.faceCount == Records::Cell::maxFaces)
        return false;
    const auto slot = static_cast<std::size_t>(record.faceCount++);
    record.faces[slot] = face;
    across[static_cast<std::size_t>(cell)].cells[slot] = other;
    return true;
}

template <class Cell>
bool attachNodes(Cell& cell, std::span<const std::int32_t> nodes) {
    for (const std::int32_t node : nodes) {
        const auto end = cell.nodes.begin() + cell.nodeCount;
        if (std::find(cell.nodes.begin(), end, node) != end)
            continue;
        if (end == cell.nodes.end())
            return false;
        *end = node;
        ++cell.nodeCount;
    }
    return true;
}

/// Gives each cell its faces, in order, and from each face the nodes that it takes. Refuses cells with too
/// many of either.
template <class Records>
bool connectCells(AcrossTable<Records>& across) {
    const std::int32_t F = mesh.totalFaceCount();
    const auto tooMany = [](std::int32_t face, std::int32_t cell) {
        return refuseMesh(placeOf(face, cell),
                          QStringLiteral("expected %1").arg(QLatin1String(Records::cellLimits)));
    };
    for (std::int32_t i = 0; i < F; ++i) {
        const auto& face = Records::face(i);
        const bool interior = i < mesh.interiorFaceCount;
        if (!attachFace<Records>(across, face.c0, i, face.c1))
            return tooMany(i, face.c0);
        if (interior && !attachFace<Records>(across, face.c1, i, face.c0))
            return tooMany(i, face.c1);
        if (!attachNodes(Records::cell(face.c0), Records::nodesForFirst(face)))
            return tooMany(i, face.c0);
        if (interior && !attachNodes(Records::cell(face.c1), Records::nodesForSecond(face)))
            return tooMany(i, face.c1);
    }
    return true;
}

/// The neighbours of a cell, with room for the two rings of a cell whose cells have the most faces.
template <class Records>
using Rings = std::array<std::int32_t, Records::Cell::maxFaces*(1 + Records::Cell::maxFaces)>;

/// The neighbours of a cell: the cells across its faces, then theirs, each once. Returns their number.
template <class Records>
std::int32_t collectNeighbours(const AcrossTable<Records>& across, std::int32_t c, Rings<Records>& list) {
    auto end = list.begin();
    for (const std::int32_t other : across[static_cast<std::size_t>(c)].cells)
        if (other != -1)
            *end++ = other;
    const auto faceNeighboursEnd = end;
    for (auto near = list.begin(); near != faceNeighboursEnd; ++near)
        for (const std::int32_t other : across[static_cast<std::size_t>(*near)].cells)
            if (other != -1 && other != c && std::find(list.begin(), end, other) == end)
                *end++ = other;
    return static_cast<std::int32_t>(end - list.begin());
}

/// From the counts behind the first entry to offsets.
void addUp(std::vector<std::int32_t>& start);

/// Makes and fills the compact neighbour lists. Refuses a cell with too many neighbours; in 2D no cell can
/// have too many.
template <class Records>
bool buildNeighbourLists(const AcrossTable<Records>& across) {
    constexpr std::int32_t most = Records::Cell::maxNeighbours;
    HugeArray<std::array<std::int32_t, most>> found(static_cast<std::size_t>(mesh.cellCount));
    std::vector<std::int32_t> start(static_cast<std::size_t>(mesh.cellCount) + 1);
    std::int32_t firstCrowded = noIndex;
#pragma omp parallel for schedule(static) reduction(min : firstCrowded)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        Rings<Records> list;
        const std::int32_t count = collectNeighbours<Records>(across, c, list);
        if (count > most)
            firstCrowded = std::min(firstCrowded, c);
        std::copy_n(list.begin(), std::min(count, most), found[static_cast<std::size_t>(c)].begin());
        start[static_cast<std::size_t>(c) + 1] = count;
    }
    if (firstCrowded != noIndex)
        return refuseMesh(placeOf(Records::cell(firstCrowded).faces[0], firstCrowded),
                          QStringLiteral("expected at most %1 cells in two rings round a cell, found %2")
                              .arg(most)
                              .arg(start[static_cast<std::size_t>(firstCrowded) + 1]));
    addUp(start);
    Records::allocateNeighbours(std::move(start));
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        const auto& cell = Records::cell(c);
        std::copy_n(found[static_cast<std::size_t>(c)].begin(), cell.neighbourCount, cell.neighbours);
    }
    return true;
}

/// Connects the cells, which are there, with faces, nodes and neighbours.
template <class Records>
bool connectMesh() {
    AcrossTable<Records> across(static_cast<std::size_t>(mesh.cellCount));
    return connectCells<Records>(across) && buildNeighbourLists<Records>(across);
}

/// The smallest value over the faces, starting from 10000.0. The zones may count the faces of the other
/// dimension.
template <class Face>
double smallestOfFaces(const HugeArray<Face>& faces, double Face::*size) {
    double smallest = 10000.0;
    const auto counted = static_cast<std::size_t>(mesh.totalFaceCount());
    for (std::size_t i = 0; i < std::min(counted, faces.size()); ++i)
        smallest = std::min(smallest, faces[i].*size);
    return smallest;
}

/// Runs a whole geometry pass; running out of memory refuses the mesh.
bool buildWithinMemory(bool (*build)());

} // namespace fluvane
