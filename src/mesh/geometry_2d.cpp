// Shapes and gradient weights of the cells and faces of a 2D mesh.
#include "mesh/geometry_2d.h"

#include "mesh/cell_graph.h"
#include "mesh/mesh.h"
#include "mesh/prefetch_bytes.h"
#include "mesh/storage_order.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace fluvane {

namespace {

using Links = Records2D::Links;
using Faces = FaceTable<Records2D>;
using Cells = CellTable<Records2D>;
using Centres = HugeArray<Vec2>;

Vec2 pointAt(std::int32_t p) {
    return {mesh.pointX[static_cast<std::size_t>(p)], mesh.pointY[static_cast<std::size_t>(p)]};
}

Vec2 operator-(const Vec2& a, const Vec2& b) {
    return {a.x - b.x, a.y - b.y};
}

/// The end points of a face.
struct Edge {
    Vec2 p0;
    Vec2 p1;

    explicit Edge(const FaceLinks2D& face) : p0(pointAt(face.nodes[0])), p1(pointAt(face.nodes[1])) {}
    Vec2 midpoint() const { return {(p0.x + p1.x) / 2, (p0.y + p1.y) / 2}; }
    /// As long as the face and at right angles to it.
    Vec2 normal() const { return {p0.y - p1.y, p1.x - p0.x}; }
    double length() const {
        const Vec2 d = p0 - p1;
        return std::sqrt(d.x * d.x + d.y * d.y);
    }
};

Vec2 centreOf(const Links& cell) {
    double x = 0.0;
    double y = 0.0;
    for (const std::int32_t node : cell.allNodes()) {
        const Vec2 p = pointAt(node);
        x += p.x;
        y += p.y;
    }
    return {x / cell.nodeCount, y / cell.nodeCount};
}

/// The angle under which a cell sees a node, from 0 to 2 pi; d points from the node to the centre.
/// Deliberate: 2 pi is the truncated 6.2831852, and a node level with the centre takes acos; one that lies on
/// the centre has the angle 0.
double nodeAngle(const Vec2& d) {
    const double r = std::sqrt(d.x * d.x + d.y * d.y);
    if (r == 0.0)
        return 0.0;
    const double a = std::acos(d.x / r);
    return d.y < 0.0 ? 6.2831852 - a : a;
}

/// A number that grows with the node's angle at half its rate or more and costs no acos; NaN where the angle
/// may be lost to rounding.
double roughAngle(const Vec2& d) {
    constexpr double smallest = 1e-140, largest = 1e140;
    const double reach = std::abs(d.x) + std::abs(d.y);
    if (!(reach > smallest && reach < largest))
        return std::numeric_limits<double>::quiet_NaN();
    const double level = d.x / reach;
    return d.y < 0.0 ? 3.0 + level : 1.0 - level;
}

/// Sorts the nodes by descending angle. The exchange sort decides between equal angles.
void sortByAngle(std::span<std::int32_t> nodes, std::array<double, 4>& angle) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = i + 1; j < nodes.size(); ++j) {
            if (angle[j] > angle[i]) {
                std::swap(angle[i], angle[j]);
                std::swap(nodes[i], nodes[j]);
            }
        }
    }
}

/// Sorts the nodes clockwise: by descending angle. Where rough angles keep clear of each other, the true ones
/// have the same order, and a node's place is the number of angles above its own.
void orderNodes(std::span<std::int32_t> nodes, const Vec2& centre) {
    constexpr double clear = 1e-5; // far above the truncation of 2 pi and the rounding of acos
    std::array<Vec2, 4> d;
    std::array<double, 4> angle{};
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        d[k] = centre - pointAt(nodes[k]);
        angle[k] = roughAngle(d[k]);
    }
    bool apart = true;
    std::array<std::size_t, 4> place{};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = i + 1; j < nodes.size(); ++j) {
            apart &= std::abs(angle[i] - angle[j]) > clear;
            const bool below = angle[i] < angle[j];
            place[i] += below;
            place[j] += !below;
        }
    }
    if (apart) {
        std::array<std::int32_t, 4> ordered{};
        for (std::size_t k = 0; k < nodes.size(); ++k)
            ordered[place[k]] = nodes[k];
        std::copy_n(ordered.begin(), nodes.size(), nodes.begin());
        return;
    }
    for (std::size_t k = 0; k < nodes.size(); ++k)
        angle[k] = nodeAngle(d[k]);
    sortByAngle(nodes, angle);
}

/// Outward area vectors; the last face's closes the polygon.
void setAreaVectors(CellRecord& cell, const Links& links, const Faces& faces, const Vec2& centre) {
    Vec2 sum;
    const auto n = static_cast<std::size_t>(links.faceCount);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const Edge edge(faces[static_cast<std::size_t>(links.faces[k])]);
        const Vec2 away = edge.midpoint() - centre;
        Vec2 S = edge.normal();
        if (away.x * S.x + away.y * S.y < 0.0)
            S = {-S.x, -S.y};
        cell.S[k] = S;
        sum.x += S.x;
        sum.y += S.y;
    }
    if (n > 0)
        cell.S[n - 1] = {-sum.x, -sum.y};
}

/// Fills the records of the faces of which this is the first cell, each face thus once. Of a face that a cell
/// has twice the first area vector counts. Whether all have a length.
bool finishFaces(const CellRecord& cell, std::int32_t c, const Links& links, const Faces& faces) {
    bool allLong = true;
    for (auto k = static_cast<std::size_t>(links.faceCount); k-- > 0;) {
        const auto i = static_cast<std::size_t>(links.faces[k]);
        if (faces[i].c0 != c)
            continue;
        const Edge edge(faces[i]);
        const Vec2 middle = edge.midpoint();
        FaceRecord& face = mesh.faces2D[i];
        face.xf = middle.x;
        face.yf = middle.y;
        face.S0x = cell.S[k].x;
        face.S0y = cell.S[k].y;
        face.length = edge.length();
        allLong &= face.length > 0.0;
    }
    return allLong;
}

/// The polygon's area from the clockwise nodes; 0 for other shapes than triangles and quadrilaterals.
double areaOf(std::span<const std::int32_t> nodes) {
    if (nodes.size() < 3)
        return 0.0;
    const Vec2 p0 = pointAt(nodes[0]);
    const Vec2 p1 = pointAt(nodes[1]);
    const Vec2 p2 = pointAt(nodes[2]);
    if (nodes.size() == 3)
        return -0.5 * (p1.x * (p2.y - p0.y) + p0.x * (p1.y - p2.y) + p2.x * (p0.y - p1.y));
    const Vec2 p3 = pointAt(nodes[3]);
    return -0.5 * (p1.x * (p2.y - p0.y) + p0.x * (p1.y - p3.y) + p2.x * (p3.y - p1.y) + p3.x * (p0.y - p2.y));
}

/// Least-squares weights, with which the gradient of phi is the sum of lsq[j] (phi_c - phi_j). False, with
/// weights 0, when all neighbours lie on one line through the centre.
bool setWeights(const Vec2& centre, std::span<const std::int32_t> neighbours, const Centres& centres,
                Vec2* lsq) {
    // The determinant's own rounding, relative to its first product, when it should be 0.
    constexpr double rounding = 1e-14;
    // One array a number, so that the compiler works on several neighbours at once.
    using Numbers = std::array<double, CellRecord::maxNeighbours>;
    Numbers x, y, w, xx, yy, xy;
    const std::size_t count = neighbours.size();
    for (std::size_t j = 0; j < count; ++j) {
        const Vec2 d = centre - centres[static_cast<std::size_t>(neighbours[j])];
        x[j] = d.x;
        y[j] = d.y;
    }
    for (std::size_t j = 0; j < count; ++j) {
        w[j] = 1.0 / (x[j] * x[j] + y[j] * y[j]);
        xx[j] = w[j] * (x[j] * x[j]);
        yy[j] = w[j] * (y[j] * y[j]);
        xy[j] = w[j] * x[j] * y[j];
    }
    double Sxx = 0.0;
    double Syy = 0.0;
    double Sxy = 0.0;
    for (std::size_t j = 0; j < count; ++j) {
        Sxx += xx[j];
        Syy += yy[j];
        Sxy += xy[j];
    }
    const double det = Sxx * Syy - Sxy * Sxy;
    if (!(det > rounding * (Sxx * Syy)) || !std::isfinite(det))
        return false;
    for (std::size_t j = 0; j < count; ++j)
        lsq[j] = {w[j] * (Syy * x[j] - Sxy * y[j]) / det, w[j] * (Sxx * y[j] - Sxy * x[j]) / det};
    return true;
}

/// Fills a cell's record but for its weights, and the records of its faces as finishFaces() does.
bool shapeCell(CellRecord& cell, std::int32_t c, const Links& links, const Faces& faces, const Vec2& centre) {
    const std::span<std::int32_t> nodes(cell.nodes.data(), static_cast<std::size_t>(links.nodeCount));
    cell.xc = centre.x;
    cell.yc = centre.y;
    orderNodes(nodes, centre);
    setAreaVectors(cell, links, faces, centre);
    cell.area = areaOf(nodes);
    return finishFaces(cell, c, links, faces);
}

/// Asks for the face records that finishFaces() will fill.
FLUVANE_FORCE_INLINE void prefetchFaces(const Links& links, std::int32_t c, const Faces& faces) {
    for (std::size_t k = 0; k < static_cast<std::size_t>(links.faceCount); ++k) {
        const auto i = static_cast<std::size_t>(links.faces[k]);
        if (faces[i].c0 == c)
            prefetchBytes(&mesh.faces2D[i], sizeof(FaceRecord));
    }
}

/// Fills the cells' records, the faces' and the weights. False, with one problem line, when cells are named
/// by no face.
bool shapeCells(const Faces& faces, const Cells& cells, const Centres& centres) {
    constexpr std::int32_t ahead = 16;
    const StorageOrder& order = mesh.cells2D.order();
    FlawedCells unnamed;
    FlawedCells singular;
    FlawedCells open;
    FlawedCells withoutLength;
#pragma omp parallel for schedule(static) reduction(addFlaws : unnamed, singular, open, withoutLength)
    for (std::int32_t slot = 0; slot < mesh.cellCount; ++slot) {
        if (const std::int32_t soon = slot + ahead; soon < mesh.cellCount) {
            const std::size_t s = order.number(static_cast<std::size_t>(soon));
            prefetchFaces(cells[s], static_cast<std::int32_t>(s), faces);
        }
        prefetchAhead(cells, order, static_cast<std::size_t>(slot));
        const std::size_t i = order.number(static_cast<std::size_t>(slot));
        const auto c = static_cast<std::int32_t>(i);
        CellRecord& cell = mesh.cells2D.data()[slot];
        fillConnections(cells[i], slot, cell);
        const Vec2& centre = centres[static_cast<std::size_t>(slot)];
        if (!shapeCell(cell, c, cells[i], faces, centre))
            withoutLength.add(c);
        if (!setWeights(centre, neighbourSlotsOf(slot), centres, cell.lsq))
            singular.add(c);
        if (cell.faceCount == 0)
            unnamed.add(c);
        if (cell.nodeCount != cell.faceCount || !(cell.area > 0.0))
            open.add(c);
    }
    if (unnamed.count > 0)
        return refuseUnnamedCell(unnamed.first);
    reportCells<Records2D>(singular,
                           QStringLiteral("the neighbours lie on one line, gradient weights are 0"));
    reportCells<Records2D>(open, QStringLiteral("the faces do not run round the cell in one direction, its "
                                                "area and centre are wrong"));
    reportCells<Records2D>(withoutLength, QStringLiteral("a face has no length, the time step will be 0"));
    return true;
}

bool build(Storage storage) {
    static_assert(Rings<Records2D>().size() <= CellRecord::maxNeighbours,
                  "two rings of cells with so many faces must fit the list");
    if (mesh.totalFaceCount() == 0)
        return true; // the empty mesh has no cells either
    const Faces faces = gatherFaces<Records2D>();
    const std::int32_t highest = highestCell(faces);
    if (!checkHighestCell(highest) || !checkFaces<Records2D>(faces, highest + 1))
        return false;
    Cells cells(static_cast<std::size_t>(highest) + 1);
    if (!connectCells<Records2D>(faces, cells))
        return false;
    Centres centres(cells.size(), [&cells](std::size_t c) { return centreOf(cells[c]); });
    storeInOrder<Records2D>(chooseOrder<Records2D>(storage, faces, cells, centres), highest + 1);
    if (!buildNeighbourLists<Records2D>(cells))
        return false;
    listSlots<Records2D>(faces, cells);
    centres = asCellsLie(std::move(centres), mesh.cells2D.order());
    return shapeCells(faces, cells, centres);
}

} // namespace

std::int32_t countCells2D() {
    return highestCell(gatherFaces<Records2D>()) + 1;
}

bool buildGeometry2D() {
    return buildGeometry2D(Storage::automatic);
}

bool buildGeometry2D(Storage storage) {
    return buildWithinMemory(build, storage);
}

double minFaceLength2D() {
    return smallestOfFaces<FaceRecord>(mesh.faces2D, [](const FaceRecord& f) -> double { return f.length; });
}

} // namespace fluvane
