// Shapes and gradient weights of the cells and faces of a 2D mesh.
#include "mesh/geometry_2d.h"

#include "mesh/cell_graph.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fluvane {

namespace {

FaceRecord& faceAt(std::int32_t i) {
    return Records2D::face(i);
}

CellRecord& cellAt(std::int32_t c) {
    return Records2D::cell(c);
}

Vec2 pointAt(std::int32_t p) {
    return {mesh.pointX[static_cast<std::size_t>(p)], mesh.pointY[static_cast<std::size_t>(p)]};
}

void setMidpoints() {
    const std::int32_t F = mesh.totalFaceCount();
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < F; ++i) {
        FaceRecord& face = faceAt(i);
        const Vec2 p0 = pointAt(face.n0);
        const Vec2 p1 = pointAt(face.n1);
        face.xf = (p0.x + p1.x) / 2;
        face.yf = (p0.y + p1.y) / 2;
    }
}

void setCentre(CellRecord& cell) {
    double x = 0.0;
    double y = 0.0;
    for (std::int32_t k = 0; k < cell.nodeCount; ++k) {
        const Vec2 p = pointAt(cell.nodes[static_cast<std::size_t>(k)]);
        x += p.x;
        y += p.y;
    }
    cell.xc = x / cell.nodeCount;
    cell.yc = y / cell.nodeCount;
}

/// The angle under which a cell sees a node, from 0 to 2 pi. Deliberate: 2 pi is the truncated 6.2831852, and
/// a node level with the centre takes acos; one that lies on the centre has the angle 0.
double nodeAngle(double dx, double dy) {
    const double r = std::sqrt(dx * dx + dy * dy);
    if (r == 0.0)
        return 0.0;
    const double a = std::acos(dx / r);
    return dy < 0.0 ? 6.2831852 - a : a;
}

/// Sorts the nodes by descending angle, which is clockwise. The exchange sort decides between equal angles.
void orderNodes(CellRecord& cell) {
    std::array<double, 4> angle{};
    const auto n = static_cast<std::size_t>(cell.nodeCount);
    for (std::size_t k = 0; k < n; ++k) {
        const Vec2 p = pointAt(cell.nodes[k]);
        angle[k] = nodeAngle(cell.xc - p.x, cell.yc - p.y);
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = i + 1; j < n; ++j) {
            if (angle[j] > angle[i]) {
                std::swap(angle[i], angle[j]);
                std::swap(cell.nodes[i], cell.nodes[j]);
            }
        }
    }
}

/// Outward area vectors; the last face's closes the polygon.
void setAreaVectors(CellRecord& cell) {
    Vec2 sum;
    const auto n = static_cast<std::size_t>(cell.faceCount);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const FaceRecord& face = faceAt(cell.faces[k]);
        const Vec2 p0 = pointAt(face.n0);
        const Vec2 p1 = pointAt(face.n1);
        Vec2 S{p0.y - p1.y, p1.x - p0.x};
        if ((face.xf - cell.xc) * S.x + (face.yf - cell.yc) * S.y < 0.0)
            S = {-S.x, -S.y};
        cell.S[k] = S;
        sum.x += S.x;
        sum.y += S.y;
    }
    if (n > 0)
        cell.S[n - 1] = {-sum.x, -sum.y};
}

/// The polygon's area from the clockwise nodes; other shapes than triangles and quadrilaterals keep 0.
void setArea(CellRecord& cell) {
    if (cell.nodeCount < 3)
        return;
    const Vec2 p0 = pointAt(cell.nodes[0]);
    const Vec2 p1 = pointAt(cell.nodes[1]);
    const Vec2 p2 = pointAt(cell.nodes[2]);
    if (cell.nodeCount == 3) {
        cell.area = -0.5 * (p1.x * (p2.y - p0.y) + p0.x * (p1.y - p2.y) + p2.x * (p0.y - p1.y));
        return;
    }
    const Vec2 p3 = pointAt(cell.nodes[3]);
    cell.area =
        -0.5 * (p1.x * (p2.y - p0.y) + p0.x * (p1.y - p3.y) + p2.x * (p3.y - p1.y) + p3.x * (p0.y - p2.y));
}

/// Least-squares weights, with which the gradient of phi is the sum of lsq[j] (phi_c - phi_j). False, with
/// weights 0, when all neighbours lie on one line through the centre.
bool setWeights(CellRecord& cell) {
    // The determinant's own rounding, relative to its first product, when it should be 0.
    constexpr double rounding = 1e-14;
    double Sxx = 0.0;
    double Syy = 0.0;
    double Sxy = 0.0;
    const auto weightOf = [](double dx, double dy) { return 1.0 / (dx * dx + dy * dy); };
    for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
        const CellRecord& other = cellAt(cell.neighbours[j]);
        const double dx = cell.xc - other.xc;
        const double dy = cell.yc - other.yc;
        const double w = weightOf(dx, dy);
        Sxx += w * (dx * dx);
        Syy += w * (dy * dy);
        Sxy += w * dx * dy;
    }
    const double det = Sxx * Syy - Sxy * Sxy;
    if (!(det > rounding * (Sxx * Syy)) || !std::isfinite(det))
        return false;
    for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
        const CellRecord& other = cellAt(cell.neighbours[j]);
        const double dx = cell.xc - other.xc;
        const double dy = cell.yc - other.yc;
        const double w = weightOf(dx, dy);
        cell.lsq[j] = {w * (Syy * dx - Sxy * dy) / det, w * (Sxx * dy - Sxy * dx) / det};
    }
    return true;
}

void shapeCells() {
    FlawedCells singular;
    FlawedCells open;
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c)
        setCentre(cellAt(c));
#pragma omp parallel for schedule(static) reduction(addFlaws : singular, open)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        CellRecord& cell = cellAt(c);
        orderNodes(cell);
        setAreaVectors(cell);
        setArea(cell);
        if (!setWeights(cell))
            singular.add(c);
        if (cell.nodeCount != cell.faceCount || !(cell.area > 0.0))
            open.add(c);
    }
    reportCells<Records2D>(singular,
                           QStringLiteral("the neighbours lie on one line, gradient weights are 0"));
    reportCells<Records2D>(open, QStringLiteral("the faces do not run round the cell in one direction, its "
                                                "area and centre are wrong"));
}

/// The area vector that a cell keeps for one of its faces.
Vec2 areaVectorOf(const CellRecord& cell, std::int32_t face) {
    const auto slot = std::find(cell.faces.begin(), cell.faces.end(), face);
    return cell.S[static_cast<std::size_t>(slot - cell.faces.begin())];
}

void finishFaces() {
    const std::int32_t F = mesh.totalFaceCount();
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < F; ++i) {
        FaceRecord& face = faceAt(i);
        const Vec2 p0 = pointAt(face.n0);
        const Vec2 p1 = pointAt(face.n1);
        const double dx = p0.x - p1.x;
        const double dy = p0.y - p1.y;
        face.length = std::sqrt(dx * dx + dy * dy);
        const Vec2 S0 = areaVectorOf(cellAt(face.c0), i);
        face.S0x = S0.x;
        face.S0y = S0.y;
        if (face.c1 == -1)
            continue;
        const Vec2 S1 = areaVectorOf(cellAt(face.c1), i);
        face.S1x = S1.x;
        face.S1y = S1.y;
    }
}

bool build() {
    static_assert(Rings<Records2D>().size() <= CellRecord::maxNeighbours,
                  "two rings of cells with so many faces must fit the list");
    if (mesh.totalFaceCount() == 0)
        return true; // the empty mesh has no cells either
    const std::int32_t highest = highestCell<Records2D>();
    if (!checkHighestCell(highest) || !checkFaces<Records2D>(highest + 1))
        return false;
    mesh.allocateCells2D(highest + 1);
    if (!connectMesh<Records2D>())
        return false;
    setMidpoints();
    shapeCells();
    finishFaces();
    return true;
}

} // namespace

std::int32_t countCells2D() {
    return highestCell<Records2D>() + 1;
}

bool buildGeometry2D() {
    return buildWithinMemory(build);
}

double minFaceLength2D() {
    return smallestOfFaces(mesh.faces2D, &FaceRecord::length);
}

} // namespace fluvane
