// Cells and their neighbours from the faces of a mesh: what the geometry passes of both dimensions share.
#pragma once

#include "mesh/force_inline.h"
#include "mesh/mesh.h"
#include "mesh/prefetch_bytes.h"

#include <QString>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <omp.h>
#include <span>
#include <utility>
#include <vector>

namespace fluvane {

/// Above every face and cell index: the start of a search for the lowest one.
constexpr std::int32_t noIndex = std::numeric_limits<std::int32_t>::max();

/// What the faces of a 2D mesh connect, in few bytes a face.
struct FaceLinks2D {
    std::array<std::int32_t, 2> nodes;
    std::int32_t c0;
    std::int32_t c1;

    static constexpr bool hasNodeCount() { return true; }
    std::span<const std::int32_t> allNodes() const { return nodes; }
    /// A cell takes from each face the node at which the face starts as seen from the cell.
    std::span<const std::int32_t> nodesForFirst() const { return {nodes.data(), 1}; }
    std::span<const std::int32_t> nodesForSecond() const { return {nodes.data() + 1, 1}; }
};

/// The same in 3D. Whoever asks for the nodes has checked that there are three or four.
struct FaceLinks3D {
    std::array<std::int32_t, 4> nodes;
    std::int32_t c0;
    std::int32_t c1;
    std::int32_t nodeCount;

    bool hasNodeCount() const { return nodeCount == 3 || nodeCount == 4; }
    std::span<const std::int32_t> allNodes() const {
        return {nodes.data(), static_cast<std::size_t>(nodeCount)};
    }
    /// Unlike in 2D, all nodes of a face go to both cells.
    std::span<const std::int32_t> nodesForFirst() const { return allNodes(); }
    std::span<const std::int32_t> nodesForSecond() const { return allNodes(); }
};

/// What the faces give to a cell, in few bytes: its faces in the order they are attached, the cells across
/// them (-1 for none) and the nodes. The geometry passes work on a table of these instead of the wide
/// records, which are filled once at the end.
template <std::size_t faceLimit, std::size_t nodeLimit>
struct alignas(32) CellLinks {
    std::array<std::int32_t, faceLimit> faces;
    std::array<std::int32_t, faceLimit> across;
    std::array<std::int32_t, nodeLimit> nodes;
    std::int16_t faceCount;
    std::int16_t nodeCount;

    std::span<const std::int32_t> cellsAcross() const {
        return {across.data(), static_cast<std::size_t>(faceCount)};
    }
    std::span<const std::int32_t> allNodes() const {
        return {nodes.data(), static_cast<std::size_t>(nodeCount)};
    }
};

template <>
inline constexpr bool isZeroBytes<FaceLinks2D> = true;
template <>
inline constexpr bool isZeroBytes<FaceLinks3D> = true;
template <std::size_t faceLimit, std::size_t nodeLimit>
inline constexpr bool isZeroBytes<CellLinks<faceLimit, nodeLimit>> = true;

/// The records of a 2D mesh.
struct Records2D {
    using Face = FaceRecord;
    using Cell = CellRecord;
    using FaceLinks = FaceLinks2D;
    using Links = CellLinks<4, 4>;
    static constexpr const char* faceNodes = "nodes";
    static constexpr const char* cellLimits = "at most four faces and four nodes a cell, found a fifth";

    static RecordTable<Face>& faces() { return mesh.faces2D; }
    static RecordTable<Cell>& cells() { return mesh.cells2D; }
    static auto& cellFaceSlots() { return mesh.cellFaceSlots2D; }
    static Face& face(std::int32_t i) { return faces()[static_cast<std::size_t>(i)]; }
    static Cell& cell(std::int32_t c) { return cells()[static_cast<std::size_t>(c)]; }
    static void allocateCells(std::int32_t count, StorageOrder order) {
        mesh.allocateCells2D(count, std::move(order));
    }
    static FaceLinks linksOf(std::int32_t i) {
        const Face& f = face(i);
        return {{f.n0, f.n1}, f.c0, f.c1};
    }
    static void setNeighbours(std::vector<std::int32_t> start, HugeArray<std::int32_t> list) {
        mesh.setNeighbours2D(std::move(start), std::move(list));
    }
};

/// The records of a 3D mesh.
struct Records3D {
    using Face = FaceRecord3D;
    using Cell = CellRecord3D;
    using FaceLinks = FaceLinks3D;
    using Links = CellLinks<6, 8>;
    static constexpr const char* faceNodes = "three or four nodes";
    static constexpr const char* cellLimits = "at most six faces and eight nodes a cell, found one more";

    static RecordTable<Face>& faces() { return mesh.faces3D; }
    static RecordTable<Cell>& cells() { return mesh.cells3D; }
    static auto& cellFaceSlots() { return mesh.cellFaceSlots3D; }
    static Face& face(std::int32_t i) { return faces()[static_cast<std::size_t>(i)]; }
    static Cell& cell(std::int32_t c) { return cells()[static_cast<std::size_t>(c)]; }
    static void allocateCells(std::int32_t count, StorageOrder order) {
        mesh.allocateCells3D(count, std::move(order));
    }
    static FaceLinks linksOf(std::int32_t i) {
        const Face& f = face(i);
        return {f.nodes, f.c0, f.c1, f.nodeCount};
    }
    static void setNeighbours(std::vector<std::int32_t> start, HugeArray<std::int32_t> list) {
        mesh.setNeighbours3D(std::move(start), std::move(list));
    }
};

template <class Records>
using FaceTable = HugeArray<typename Records::FaceLinks>;
template <class Records>
using CellTable = HugeArray<typename Records::Links>;

/// Asks for an element that is worked on some steps after the one in a slot, where a walk by slots jumps.
template <class T>
FLUVANE_FORCE_INLINE void prefetchAhead(const HugeArray<T>& elements, const StorageOrder& order,
                                        std::size_t slot) {
    constexpr std::size_t ahead = 24;
    if (!order.asNumbered() && slot + ahead < elements.size())
        prefetchBytes(&elements[order.number(slot + ahead)], sizeof(T));
}

/// "line 12, cell 3", numbers as in the file.
QString placeOf(std::int32_t face, std::int32_t cell);

/// Empties the mesh, says one problem line and returns false.
bool refuseMesh(const QString& place, const QString& complaint);

/// Refuses a highest cell index for which the faces have too few sides.
bool checkHighestCell(std::int32_t highest);

/// Refuses a face whose nodes or cells cannot be followed.
bool refuseFace(std::int32_t face, const char* expectedNodes, std::span<const std::int32_t> nodes,
                std::int32_t c0, std::int32_t c1, std::int32_t cells);

/// Refuses a mesh whose cell numbers have a gap: no face names this one.
bool refuseUnnamedCell(std::int32_t cell);

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

/// What all faces connect.
template <class Records>
FaceTable<Records> gatherFaces() {
    const std::int32_t F = mesh.totalFaceCount();
    FaceTable<Records> faces(static_cast<std::size_t>(F));
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < F; ++i)
        faces[static_cast<std::size_t>(i)] = Records::linksOf(i);
    return faces;
}

/// The highest cell index that the interior faces name. Deliberate: a face's second cell is looked at only
/// when its first cell does not raise the maximum.
template <class Links>
std::int32_t highestCell(const HugeArray<Links>& faces) {
    std::int32_t m = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(mesh.interiorFaceCount); ++i) {
        const Links& face = faces[i];
        if (face.c0 > m)
            m = face.c0;
        else if (face.c1 > m)
            m = face.c1;
    }
    return m;
}

/// Whether all indices of a face can be followed.
template <class Links>
bool isSound(const Links& face, bool interior, std::int32_t cells) {
    const auto isCell = [cells](std::int32_t c) { return c >= 0 && c < cells; };
    if (!face.hasNodeCount() || !isCell(face.c0) || !(interior ? isCell(face.c1) : face.c1 == -1))
        return false;
    for (const std::int32_t n : face.allNodes())
        if (n < 0 || n >= mesh.pointCount)
            return false;
    return true;
}

template <class Records>
bool checkFaces(const FaceTable<Records>& faces, std::int32_t cells) {
    const auto F = static_cast<std::int32_t>(faces.size());
    std::int32_t firstBad = noIndex;
#pragma omp parallel for schedule(static) reduction(min : firstBad)
    for (std::int32_t i = 0; i < F; ++i)
        if (!isSound(faces[static_cast<std::size_t>(i)], i < mesh.interiorFaceCount, cells))
            firstBad = std::min(firstBad, i);
    if (firstBad == noIndex)
        return true;
    const auto face = faces[static_cast<std::size_t>(firstBad)];
    if (!face.hasNodeCount())
        return refuseFace(firstBad, Records::faceNodes, {}, face.c0, face.c1, cells);
    return refuseFace(firstBad, Records::faceNodes, face.allNodes(), face.c0, face.c1, cells);
}

/// Gives a cell a face, with the cell across it; false when it has all it can have.
template <class Links>
bool attachFace(Links& cell, std::int32_t face, std::int32_t other) {
    const auto place = static_cast<std::size_t>(cell.faceCount);
    if (place == cell.faces.size())
        return false;
    ++cell.faceCount;
    cell.faces[place] = face;
    cell.across[place] = other;
    return true;
}

template <class Links>
FLUVANE_FORCE_INLINE bool attachNodes(Links& cell, std::span<const std::int32_t> nodes) {
    for (const std::int32_t node : nodes) {
        const auto count = static_cast<std::size_t>(cell.nodeCount);
        bool known = false;
        for (std::size_t k = 0; k < count; ++k)
            known |= cell.nodes[k] == node;
        if (known)
            continue;
        if (count == cell.nodes.size())
            return false;
        cell.nodes[count] = node;
        ++cell.nodeCount;
    }
    return true;
}

/// Share t of n contiguous ones of `count` things.
struct Share {
    std::int32_t first;
    std::int32_t last;

    Share(std::int64_t count, std::int64_t t, std::int64_t n)
        : first(static_cast<std::int32_t>(count * t / n)),
          last(static_cast<std::int32_t>(count * (t + 1) / n)) {}
};

/// What connectShare() returns when no cell has too many faces or nodes.
inline constexpr std::int64_t noCrowding = std::numeric_limits<std::int64_t>::max();

/// Gives the cells of a share, in the order of the faces, their faces and from each the nodes that they take.
/// Returns 4 * face + the step at which a cell has too many of either: its first cell gets the face, its
/// second cell does, then the nodes.
template <class Records>
std::int64_t connectShare(const FaceTable<Records>& faces, CellTable<Records>& cells, const Share& share) {
    constexpr std::int32_t ahead = 16;
    const auto isOurs = [&share](std::int32_t c) { return c >= share.first && c < share.last; };
    const auto F = static_cast<std::int32_t>(faces.size());
    for (std::int32_t i = 0; i < F; ++i) {
        if (const std::int32_t soon = i + ahead; soon < F) {
            const auto& next = faces[static_cast<std::size_t>(soon)];
            for (const std::int32_t c : {next.c0, next.c1})
                if (isOurs(c))
                    prefetchBytes(&cells[static_cast<std::size_t>(c)], sizeof(typename Records::Links));
        }
        const auto& face = faces[static_cast<std::size_t>(i)];
        const bool takesFirst = isOurs(face.c0);
        const bool takesSecond = i < mesh.interiorFaceCount && isOurs(face.c1);
        auto& first = cells[static_cast<std::size_t>(face.c0)];
        auto& second = cells[static_cast<std::size_t>(takesSecond ? face.c1 : face.c0)];
        const std::int64_t steps = std::int64_t{4} * i;
        if (takesFirst && !attachFace(first, i, face.c1))
            return steps;
        if (takesSecond && !attachFace(second, i, face.c0))
            return steps + 1;
        if (takesFirst && !attachNodes(first, face.nodesForFirst()))
            return steps + 2;
        if (takesSecond && !attachNodes(second, face.nodesForSecond()))
            return steps + 3;
    }
    return noCrowding;
}

/// Gives each cell its faces, in order, and from each face the nodes that it takes. Refuses cells with too
/// many of either. Every share looks at all faces: what the cells take is most of the work.
template <class Records>
bool connectCells(const FaceTable<Records>& faces, CellTable<Records>& cells) {
    const int shares = std::min(omp_get_max_threads(), omp_get_num_procs());
    const auto count = static_cast<std::int64_t>(cells.size());
    std::int64_t crowded = noCrowding;
#pragma omp parallel for schedule(static) reduction(min : crowded)
    for (int t = 0; t < shares; ++t)
        crowded = std::min(crowded, connectShare<Records>(faces, cells, Share(count, t, shares)));
    if (crowded == noCrowding)
        return true;
    const auto i = static_cast<std::int32_t>(crowded / 4);
    const auto& face = faces[static_cast<std::size_t>(i)];
    return refuseMesh(placeOf(i, crowded % 2 == 0 ? face.c0 : face.c1),
                      QStringLiteral("expected %1").arg(QLatin1String(Records::cellLimits)));
}

/// The neighbours of a cell, with room for the two rings of a cell whose cells have the most faces.
template <class Records>
using Rings = std::array<std::int32_t, Records::Cell::maxFaces*(1 + Records::Cell::maxFaces)>;

/// The neighbours of a cell: the cells across its faces, then those of theirs that are not there yet. Returns
/// their number. `seenFrom` tells of each cell from which one it was seen last, counted from 1.
template <class Records>
std::int32_t collectNeighbours(const CellTable<Records>& cells, std::int32_t c,
                               HugeArray<std::int32_t>& seenFrom, Rings<Records>& list) {
    const std::int32_t here = c + 1;
    auto end = list.begin();
    seenFrom[static_cast<std::size_t>(c)] = here;
    for (const std::int32_t other : cells[static_cast<std::size_t>(c)].cellsAcross()) {
        if (other == -1)
            continue;
        seenFrom[static_cast<std::size_t>(other)] = here;
        *end++ = other;
    }
    const auto faceNeighboursEnd = end;
    for (auto near = list.begin(); near != faceNeighboursEnd; ++near) {
        for (const std::int32_t other : cells[static_cast<std::size_t>(*near)].cellsAcross()) {
            if (other == -1 || seenFrom[static_cast<std::size_t>(other)] == here)
                continue;
            seenFrom[static_cast<std::size_t>(other)] = here;
            *end++ = other;
        }
    }
    return static_cast<std::int32_t>(end - list.begin());
}

/// From the counts behind the first entry to offsets.
void addUp(std::vector<std::int32_t>& start);

/// Makes the compact neighbour lists, for the cells as they lie, and room for their weights. Refuses a cell
/// with too many neighbours; in 2D no cell can have too many.
template <class Records>
bool buildNeighbourLists(const CellTable<Records>& cells) {
    constexpr std::int32_t most = Records::Cell::maxNeighbours;
    const auto count = static_cast<std::int32_t>(cells.size());
    const int shares = omp_get_max_threads();
    const StorageOrder& order = Records::cells().order();
    // Each share is written without gaps; what it leaves of its room is never touched.
    HugeArray<std::int32_t> lists(cells.size() * most);
    const auto roomOf = [&lists, count, shares](int t) {
        return lists.data() + std::ptrdiff_t{Share(count, t, shares).first} * most;
    };
    std::vector<std::int32_t> start(cells.size() + 1);
    std::vector<HugeArray<std::int32_t>> seenFrom(static_cast<std::size_t>(shares));
    for (auto& seen : seenFrom)
        seen = HugeArray<std::int32_t>(cells.size());
    std::int32_t firstCrowded = noIndex;
#pragma omp parallel for schedule(static) reduction(min : firstCrowded)
    for (int t = 0; t < shares; ++t) {
        const Share share(count, t, shares);
        std::int32_t* end = roomOf(t);
        for (std::int32_t slot = share.first; slot < share.last; ++slot) {
            const auto c = static_cast<std::int32_t>(order.number(static_cast<std::size_t>(slot)));
            prefetchAhead(cells, order, static_cast<std::size_t>(slot));
            Rings<Records> list;
            const std::int32_t found =
                collectNeighbours<Records>(cells, c, seenFrom[static_cast<std::size_t>(t)], list);
            if (found > most)
                firstCrowded = std::min(firstCrowded, c);
            end = std::copy_n(list.begin(), std::min(found, most), end);
            start[static_cast<std::size_t>(slot) + 1] = found;
        }
    }
    if (firstCrowded != noIndex)
        return refuseMesh(placeOf(cells[static_cast<std::size_t>(firstCrowded)].faces[0], firstCrowded),
                          QStringLiteral("expected at most %1 cells in two rings round a cell, found %2")
                              .arg(most)
                              .arg(start[order.slot(static_cast<std::size_t>(firstCrowded)) + 1]));
    addUp(start);
    for (int t = 1; t < shares; ++t) {
        const Share share(count, t, shares);
        const auto first = static_cast<std::size_t>(start[static_cast<std::size_t>(share.first)]);
        const auto last = static_cast<std::size_t>(start[static_cast<std::size_t>(share.last)]);
        std::memmove(lists.data() + first, roomOf(t), (last - first) * sizeof(std::int32_t));
    }
    lists.shrink(static_cast<std::size_t>(start.back()));
    Records::setNeighbours(std::move(start), std::move(lists));
    return true;
}

/// Where the neighbours of the cell in a slot lie.
inline std::span<const std::int32_t> neighbourSlotsOf(std::int32_t slot) {
    const std::int32_t* const start = &mesh.neighbourStart[static_cast<std::size_t>(slot)];
    const auto& slots = mesh.neighbourSlots.empty() ? mesh.neighbourList : mesh.neighbourSlots;
    return {slots.data() + start[0], slots.data() + start[1]};
}

/// Copies what the faces gave to a cell into its record, and how many neighbours the lists hold for its slot.
/// Indices that it has not stay -1.
template <class Links, class Cell>
void fillConnections(const Links& links, std::int32_t slot, Cell& cell) {
    using Count = decltype(cell.faceCount);
    const std::int32_t* const start = &mesh.neighbourStart[static_cast<std::size_t>(slot)];
    cell.neighbourCount = start[1] - start[0];
    cell.faceCount = static_cast<Count>(links.faceCount);
    cell.nodeCount = static_cast<Count>(links.nodeCount);
    std::fill(std::copy_n(links.faces.begin(), links.faceCount, cell.faces.begin()), cell.faces.end(), -1);
    std::fill(std::copy_n(links.nodes.begin(), links.nodeCount, cell.nodes.begin()), cell.nodes.end(), -1);
}

/// The smallest value over the faces, starting from 10000.0. The zones may count the faces of the other
/// dimension.
template <class Face>
double smallestOfFaces(const RecordTable<Face>& faces, double (*size)(const Face&)) {
    double smallest = 10000.0;
    const auto counted = static_cast<std::size_t>(mesh.totalFaceCount());
    for (std::size_t i = 0; i < std::min(counted, faces.size()); ++i)
        smallest = std::min(smallest, size(faces[i]));
    return smallest;
}

/// Runs a whole geometry pass; running out of memory refuses the mesh.
bool buildWithinMemory(bool (*build)(Storage), Storage storage);

} // namespace fluvane
