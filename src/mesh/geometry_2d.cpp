// Cells, neighbour lists and derived geometry of a 2D mesh.
#include "mesh/geometry_2d.h"

#include "mesh/mesh.h"
#include "output/terminal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace fluvane {

namespace {

constexpr std::int32_t none = std::numeric_limits<std::int32_t>::max();

/// The cells across the four face slots of every cell, -1 for none: what the neighbour lists are made of, in
/// 16 bytes a cell instead of a walk through the records.
using Across = std::array<std::int32_t, CellRecord::maxFaces>;

FaceRecord& faceAt(std::int32_t i) {
    return mesh.faces2D[static_cast<std::size_t>(i)];
}

CellRecord& cellAt(std::int32_t c) {
    return mesh.cells2D[static_cast<std::size_t>(c)];
}

Vec2 pointAt(std::int32_t p) {
    return {mesh.pointX[static_cast<std::size_t>(p)], mesh.pointY[static_cast<std::size_t>(p)]};
}

/// "line 12, cell 3", numbers as in the file.
QString placeOf(std::int32_t face, std::int32_t cell) {
    return QStringLiteral("line %1, cell %2").arg(mesh.faceLine(face)).arg(cell + std::int64_t{1});
}

bool refuse(const QString& place, const QString& complaint) {
    const QString line = QStringLiteral("Mesh file %1, %2: %3").arg(mesh.sourceName, place, complaint);
    mesh.clear();
    reportProblem(line);
    return false;
}

/// The highest cell index by the counting rule.
std::int32_t highestCell() {
    std::int32_t m = 0;
    for (std::int32_t i = 0; i < mesh.interiorFaceCount; ++i) {
        const FaceRecord& face = faceAt(i);
        if (face.c0 > m)
            m = face.c0;
        else if (face.c1 > m)
            m = face.c1;
    }
    return m;
}

/// Whether all indices of a face can be followed.
bool isSound(const FaceRecord& face, bool interior, std::int32_t cells) {
    const auto isPoint = [](std::int32_t n) { return n >= 0 && n < mesh.pointCount; };
    const auto isCell = [cells](std::int32_t c) { return c >= 0 && c < cells; };
    return isPoint(face.n0) && isPoint(face.n1) && isCell(face.c0) &&
           (interior ? isCell(face.c1) : face.c1 == -1);
}

bool checkFaces(std::int32_t cells) {
    const std::int32_t F = mesh.totalFaceCount();
    std::int32_t firstBad = none;
#pragma omp parallel for schedule(static) reduction(min : firstBad)
    for (std::int32_t i = 0; i < F; ++i)
        if (!isSound(faceAt(i), i < mesh.interiorFaceCount, cells))
            firstBad = std::min(firstBad, i);
    if (firstBad == none)
        return true;
    const FaceRecord& face = faceAt(firstBad);
    return refuse(
        placeOf(firstBad, std::max(face.c0, face.c1)),
        QStringLiteral("expected nodes from 1 to %1 and cells from 1 to %2 (as the interior faces count "
                       "them), found nodes %3 and %4, cells %5 and %6")
            .arg(QString::number(mesh.pointCount), QString::number(cells),
                 QString::number(face.n0 + std::int64_t{1}), QString::number(face.n1 + std::int64_t{1}),
                 QString::number(face.c0 + std::int64_t{1}), QString::number(face.c1 + std::int64_t{1})));
}

bool attachFace(CellRecord& cell, std::int32_t face) {
    if (cell.faceCount == CellRecord::maxFaces)
        return false;
    cell.faces[static_cast<std::size_t>(cell.faceCount++)] = face;
    return true;
}

bool attachNode(CellRecord& cell, std::int32_t node) {
    const auto end = cell.nodes.begin() + cell.nodeCount;
    if (std::find(cell.nodes.begin(), end, node) != end)
        return true;
    if (end == cell.nodes.end())
        return false;
    *end = node;
    ++cell.nodeCount;
    return true;
}

/// Gives each cell its faces and, from each face, the node at which the face starts as seen from the cell.
bool connectCells() {
    const std::int32_t F = mesh.totalFaceCount();
    const auto tooMany = [](std::int32_t face, std::int32_t cell) {
        return refuse(placeOf(face, cell),
                      QStringLiteral("expected at most four faces and four nodes a cell, found "
                                     "a fifth"));
    };
    for (std::int32_t i = 0; i < F; ++i) {
        const FaceRecord& face = faceAt(i);
        const bool interior = i < mesh.interiorFaceCount;
        CellRecord& a = cellAt(face.c0);
        if (!attachFace(a, i))
            return tooMany(i, face.c0);
        if (interior && !attachFace(cellAt(face.c1), i))
            return tooMany(i, face.c1);
        if (!attachNode(a, face.n0))
            return tooMany(i, face.c0);
        if (interior && !attachNode(cellAt(face.c1), face.n1))
            return tooMany(i, face.c1);
    }
    return true;
}

HugeArray<Across> cellsAcrossFaces() {
    HugeArray<Across> across(static_cast<std::size_t>(mesh.cellCount));
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        const CellRecord& cell = cellAt(c);
        for (std::size_t j = 0; j < cell.faces.size(); ++j) {
            std::int32_t other = -1;
            if (cell.faces[j] >= 0) {
                const FaceRecord& face = faceAt(cell.faces[j]);
                other = face.c0 == c ? face.c1 : face.c0;
            }
            across[static_cast<std::size_t>(c)][j] = other;
        }
    }
    return across;
}

/// The neighbours of a cell: the cells across its faces, then theirs, each once. Returns their number.
std::int32_t collectNeighbours(const HugeArray<Across>& across, std::int32_t c,
                               std::array<std::int32_t, CellRecord::maxNeighbours>& list) {
    static_assert(CellRecord::maxFaces * (1 + CellRecord::maxFaces) <= CellRecord::maxNeighbours,
                  "two rings of cells with so many faces must fit the list");
    auto end = list.begin();
    for (const std::int32_t other : across[static_cast<std::size_t>(c)])
        if (other != -1)
            *end++ = other;
    const auto faceNeighboursEnd = end;
    for (auto near = list.begin(); near != faceNeighboursEnd; ++near)
        for (const std::int32_t other : across[static_cast<std::size_t>(*near)])
            if (other != -1 && other != c && std::find(list.begin(), end, other) == end)
                *end++ = other;
    return static_cast<std::int32_t>(end - list.begin());
}

void buildNeighbourLists() {
    const HugeArray<Across> across = cellsAcrossFaces();
    std::vector<std::int32_t> start(static_cast<std::size_t>(mesh.cellCount) + 1);
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        std::array<std::int32_t, CellRecord::maxNeighbours> list;
        start[static_cast<std::size_t>(c) + 1] = collectNeighbours(across, c, list);
    }
    std::int64_t total = 0;
    for (std::int32_t& offset : start) {
        total += offset;
        if (total > std::numeric_limits<std::int32_t>::max())
            throw std::bad_alloc();
        offset = static_cast<std::int32_t>(total);
    }
    mesh.allocateNeighbours2D(std::move(start));
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        std::array<std::int32_t, CellRecord::maxNeighbours> list;
        const std::int32_t count = collectNeighbours(across, c, list);
        std::copy_n(list.begin(), count, cellAt(c).neighbours);
    }
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

/// Says how many cells have a flaw, if any, and where the first one is.
void reportCells(std::int32_t count, std::int32_t first, const QString& flaw) {
    if (count > 0)
        reportProblem(
            QStringLiteral("Mesh file %1, %2: %3 (%4 in all)")
                .arg(mesh.sourceName, placeOf(cellAt(first).faces[0], first), flaw, QString::number(count)));
}

void shapeCells() {
    std::int32_t singular = 0;
    std::int32_t firstSingular = none;
    std::int32_t open = 0;
    std::int32_t firstOpen = none;
#pragma omp parallel for schedule(static)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c)
        setCentre(cellAt(c));
#pragma omp parallel for schedule(static) reduction(+ : singular, open) reduction(min : firstSingular, firstOpen)
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        CellRecord& cell = cellAt(c);
        orderNodes(cell);
        setAreaVectors(cell);
        setArea(cell);
        if (!setWeights(cell)) {
            ++singular;
            firstSingular = std::min(firstSingular, c);
        }
        if (cell.nodeCount != cell.faceCount || !(cell.area > 0.0)) {
            ++open;
            firstOpen = std::min(firstOpen, c);
        }
    }
    reportCells(singular, firstSingular,
                QStringLiteral("the neighbours lie on one line, gradient weights are 0"));
    reportCells(open, firstOpen,
                QStringLiteral(
                    "the faces do not run round the cell in one direction, its area and centre are wrong"));
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
    const std::int32_t F = mesh.totalFaceCount();
    if (F == 0)
        return true; // the empty mesh has no cells either
    const std::int32_t highest = highestCell();
    if (highest >= std::int64_t{2} * F)
        return refuse(
            QStringLiteral("cell %1").arg(highest + std::int64_t{1}),
            QStringLiteral("expected at most %1 cells for %2 faces").arg(std::int64_t{2} * F).arg(F));
    if (!checkFaces(highest + 1))
        return false;
    mesh.allocateCells2D(highest + 1);
    if (!connectCells())
        return false;
    buildNeighbourLists();
    setMidpoints();
    shapeCells();
    finishFaces();
    return true;
}

} // namespace

std::int32_t countCells2D() {
    return highestCell() + 1;
}

bool buildGeometry2D() {
    try {
        return build();
    } catch (const std::bad_alloc&) {
        return refuse(QStringLiteral("%1 faces").arg(mesh.totalFaceCount()),
                      QStringLiteral("not enough memory for the cells"));
    }
}

double minFaceLength2D() {
    double smallest = 10000.0;
    // The zones may count the faces of the other dimension.
    const auto counted = static_cast<std::size_t>(mesh.totalFaceCount());
    for (std::size_t i = 0; i < std::min(counted, mesh.faces2D.size()); ++i)
        smallest = std::min(smallest, mesh.faces2D[i].length);
    return smallest;
}

} // namespace fluvane
