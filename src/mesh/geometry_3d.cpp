// Shapes and gradient weights of the cells and faces of a 3D mesh.
#include "mesh/geometry_3d.h"

#include "mesh/cell_graph.h"
#include "mesh/mesh.h"
#include "mesh/prefetch_bytes.h"
#include "mesh/storage_order.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

namespace fluvane {

namespace {

using Links = Records3D::Links;
using Cells = CellTable<Records3D>;
using Centres = HugeArray<Vec3>; // closer together than in the records

FaceRecord3D& faceAt(std::int32_t i) {
    return Records3D::face(i);
}

Vec3 pointAt(std::int32_t p) {
    const auto i = static_cast<std::size_t>(p);
    return {mesh.pointX[i], mesh.pointY[i], mesh.pointZ[i]};
}

Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

double lengthOf(const Vec3& a) {
    return std::sqrt(dot(a, a));
}

/// a x b with each product in the order of the rule for face normals.
Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

/// The arithmetic mean of some points.
Vec3 meanOf(std::span<const std::int32_t> nodes) {
    Vec3 sum;
    for (const std::int32_t node : nodes) {
        const Vec3 p = pointAt(node);
        sum.x += p.x;
        sum.y += p.y;
        sum.z += p.z;
    }
    const auto count = static_cast<double>(nodes.size());
    return {sum.x / count, sum.y / count, sum.z / count};
}

/// Heron's formula. A triangle so thin that rounding makes the product negative has no area.
double triangleArea(const Vec3& p0, const Vec3& p1, const Vec3& p2) {
    const double a = lengthOf(p0 - p1);
    const double b = lengthOf(p1 - p2);
    const double c = lengthOf(p0 - p2);
    const double s = (a + b + c) / 2;
    const double product = s * (s - a) * (s - b) * (s - c);
    return product > 0.0 ? std::sqrt(product) : 0.0;
}

/// Deliberate: the area of the projection on the x-y plane; an upright quadrilateral has none.
double quadrilateralArea(const Vec3& p0, const Vec3& p1, const Vec3& p2, const Vec3& p3) {
    return std::abs(p1.x * (p2.y - p0.y) + p0.x * (p1.y - p3.y) + p2.x * (p3.y - p1.y) +
                    p3.x * (p0.y - p2.y)) *
           0.5;
}

/// The unit normal pointing away from a cell; a face whose first three nodes lie on one line has none.
Vec3 outward(const Vec3& n, double length, const Vec3& faceCentre, const Vec3& cellCentre) {
    if (length == 0.0)
        return {};
    const bool inward = dot(faceCentre - cellCentre, n) < 0.0;
    const Vec3 out = inward ? Vec3{-n.x, -n.y, -n.z} : n;
    return {out.x / length, out.y / length, out.z / length};
}

/// `sides` are the slots of the face's cells, -1 for none.
void shapeFace(FaceRecord3D& face, const std::array<std::int32_t, 2>& sides, const Centres& centres) {
    const Vec3 p0 = pointAt(face.nodes[0]);
    const Vec3 p1 = pointAt(face.nodes[1]);
    const Vec3 p2 = pointAt(face.nodes[2]);
    const Vec3 centre = meanOf({face.nodes.data(), static_cast<std::size_t>(face.nodeCount)});
    face.xf = centre.x;
    face.yf = centre.y;
    face.zf = centre.z;
    face.area = face.nodeCount == 3 ? triangleArea(p0, p1, p2)
                                    : quadrilateralArea(p0, p1, p2, pointAt(face.nodes[3]));
    const Vec3 n = cross(p1 - p0, p2 - p0);
    const double length = lengthOf(n);
    const Vec3 n0 = outward(n, length, centre, centres[static_cast<std::size_t>(sides[0])]);
    face.n0x = n0.x;
    face.n0y = n0.y;
    face.n0z = n0.z;
    if (sides[1] == -1)
        return;
    const Vec3 n1 = outward(n, length, centre, centres[static_cast<std::size_t>(sides[1])]);
    face.n1x = n1.x;
    face.n1y = n1.y;
    face.n1z = n1.z;
}

void shapeFaces(const Centres& centres) {
    const std::int32_t F = mesh.totalFaceCount();
    const bool moved = !mesh.faceCellSlots.empty();
#pragma omp parallel for schedule(static)
    for (std::int32_t slot = 0; slot < F; ++slot) {
        FaceRecord3D& face = mesh.faces3D.data()[slot];
        const std::array numbers{face.c0, face.c1};
        shapeFace(face, moved ? mesh.faceCellSlots[static_cast<std::size_t>(slot)] : numbers, centres);
    }
}

/// Sets the volume of a cell of four nodes, others keep 0. False when they lie in one plane.
bool setVolume(CellRecord3D& cell) {
    // The triple product's own rounding, relative to the edges' lengths, when it should be 0.
    constexpr double rounding = 1e-14;
    const Vec3 p0 = pointAt(cell.nodes[0]);
    const Vec3 a = pointAt(cell.nodes[1]) - p0;
    const Vec3 b = pointAt(cell.nodes[2]) - p0;
    const Vec3 c = pointAt(cell.nodes[3]) - p0;
    const double product = std::abs(dot(cross(a, b), c));
    cell.volume = product / 6;
    return product > rounding * (lengthOf(a) * lengthOf(b) * lengthOf(c));
}

/// Asks for the record of a cell and for what collectFaces() will read of its faces.
FLUVANE_FORCE_INLINE void prefetchCell(const CellRecord3D& cell, const Links& links) {
    prefetchBytes(&cell, sizeof cell);
    for (std::size_t k = 0; k < static_cast<std::size_t>(links.faceCount); ++k) {
        const FaceRecord3D& face = faceAt(links.faces[k]);
        prefetchBytes(&face.xf, sizeof face - offsetof(FaceRecord3D, xf));
    }
}

/// Copies the outward normals and the areas of the cell's faces. Whether these are the four sides of a
/// tetrahedron: triangles of which each leaves out another of four nodes.
bool collectFaces(CellRecord3D& cell, std::int32_t c) {
    unsigned left = 0; // one bit a node that some face leaves out
    for (std::size_t k = 0; k < static_cast<std::size_t>(cell.faceCount); ++k) {
        const FaceRecord3D& face = faceAt(cell.faces[k]);
        cell.normals[k] =
            face.c0 == c ? Vec3{face.n0x, face.n0y, face.n0z} : Vec3{face.n1x, face.n1y, face.n1z};
        cell.areas[k] = face.area;
        if (face.nodeCount != 3)
            continue;
        for (std::size_t j = 0; j < 4; ++j) {
            const std::int32_t node = cell.nodes[j];
            if (face.nodes[0] != node && face.nodes[1] != node && face.nodes[2] != node)
                left |= 1U << j;
        }
    }
    return cell.faceCount == 4 && cell.nodeCount == 4 && left == 0b1111U;
}

/// The symmetric matrix of the least-squares system.
struct Symmetric {
    double xx = 0.0, yy = 0.0, zz = 0.0, xy = 0.0, xz = 0.0, yz = 0.0;

    Symmetric adjugate() const {
        return {yy * zz - yz * yz, xx * zz - xz * xz, xx * yy - xy * xy,
                xz * yz - xy * zz, xy * yz - xz * yy, xy * xz - xx * yz};
    }
    Symmetric dividedBy(double d) const { return {xx / d, yy / d, zz / d, xy / d, xz / d, yz / d}; }
    Vec3 times(const Vec3& v) const {
        return {xx * v.x + xy * v.y + xz * v.z, xy * v.x + yy * v.y + yz * v.z,
                xz * v.x + yz * v.y + zz * v.z};
    }
};

/// Least-squares weights, with which the gradient of phi is the sum of lsq[j] (phi_c - phi_j). False, with
/// weights 0, when all neighbours lie in one plane through the centre.
bool setWeights(const Vec3& centre, std::span<const std::int32_t> neighbours, const Centres& centres,
                Vec3* lsq) {
    // The determinant's own rounding when it should be 0, relative to the product of the diagonal. That
    // product bounds the determinant and scales with it when an axis is stretched.
    constexpr double rounding = 1e-13;
    // One array a number, so that the compiler works on several neighbours at once.
    using Numbers = std::array<double, CellRecord3D::maxNeighbours>;
    Numbers x, y, z, w, xx, yy, zz, xy, xz, yz;
    const std::size_t count = neighbours.size();
    for (std::size_t j = 0; j < count; ++j) {
        const Vec3 d = centre - centres[static_cast<std::size_t>(neighbours[j])];
        x[j] = d.x;
        y[j] = d.y;
        z[j] = d.z;
    }
    for (std::size_t j = 0; j < count; ++j) {
        w[j] = 1.0 / (x[j] * x[j] + y[j] * y[j] + z[j] * z[j]);
        xx[j] = w[j] * (x[j] * x[j]);
        yy[j] = w[j] * (y[j] * y[j]);
        zz[j] = w[j] * (z[j] * z[j]);
        xy[j] = w[j] * x[j] * y[j];
        xz[j] = w[j] * x[j] * z[j];
        yz[j] = w[j] * y[j] * z[j];
    }
    Symmetric M;
    for (std::size_t j = 0; j < count; ++j) {
        M.xx += xx[j];
        M.yy += yy[j];
        M.zz += zz[j];
        M.xy += xy[j];
        M.xz += xz[j];
        M.yz += yz[j];
    }
    const Symmetric A = M.adjugate();
    const double det = M.xx * A.xx + M.xy * A.xy + M.xz * A.xz;
    if (!(det > rounding * (M.xx * M.yy * M.zz)) || !std::isfinite(det))
        return false;
    const Symmetric inverse = A.dividedBy(det);
    for (std::size_t j = 0; j < count; ++j) {
        const Vec3 v = inverse.times({x[j], y[j], z[j]});
        lsq[j] = {w[j] * v.x, w[j] * v.y, w[j] * v.z};
    }
    return true;
}

/// Fills the cells' records and weights. False, with one problem line, when cells are named by no face or are
/// no tetrahedra.
bool shapeCells(const Cells& cells, const Centres& centres) {
    constexpr std::int32_t ahead = 12;
    const StorageOrder& order = mesh.cells3D.order();
    FlawedCells unnamed;
    FlawedCells otherShapes;
    FlawedCells flat;
    FlawedCells singular;
#pragma omp parallel for schedule(static) reduction(addFlaws : unnamed, otherShapes, flat, singular)
    for (std::int32_t slot = 0; slot < mesh.cellCount; ++slot) {
        if (const std::int32_t soon = slot + ahead; soon < mesh.cellCount)
            prefetchCell(mesh.cells3D.data()[soon], cells[order.number(static_cast<std::size_t>(soon))]);
        prefetchAhead(cells, order, static_cast<std::size_t>(slot));
        const std::size_t i = order.number(static_cast<std::size_t>(slot));
        const auto c = static_cast<std::int32_t>(i);
        CellRecord3D& cell = mesh.cells3D.data()[slot];
        fillConnections(cells[i], slot, cell);
        const Vec3& centre = centres[static_cast<std::size_t>(slot)];
        cell.xc = centre.x;
        cell.yc = centre.y;
        cell.zc = centre.z;
        if (cell.nodeCount == 4 && !setVolume(cell))
            flat.add(c);
        if (cell.faceCount == 0)
            unnamed.add(c);
        if (!collectFaces(cell, c))
            otherShapes.add(c);
        if (!setWeights(centre, neighbourSlotsOf(slot), centres, cell.lsq))
            singular.add(c);
    }
    if (unnamed.count > 0)
        return refuseUnnamedCell(unnamed.first);
    reportCells<Records3D>(otherShapes, QStringLiteral("the cell is not a tetrahedron of four triangles, and "
                                                       "the 3D solver works on tetrahedra only"));
    if (otherShapes.count > 0)
        return false;
    reportCells<Records3D>(flat, QStringLiteral("the cell is flat, it has no volume"));
    reportCells<Records3D>(singular,
                           QStringLiteral("the neighbours lie in one plane, gradient weights are 0"));
    return true;
}

bool build(Storage storage) {
    if (mesh.totalFaceCount() == 0)
        return true; // the empty mesh has no cells either
    const FaceTable<Records3D> faces = gatherFaces<Records3D>();
    const std::int32_t highest = highestCell(faces);
    if (!checkHighestCell(highest) || !checkFaces<Records3D>(faces, highest + 1))
        return false;
    Cells cells(static_cast<std::size_t>(highest) + 1);
    if (!connectCells<Records3D>(faces, cells))
        return false;
    Centres centres(cells.size(), [&cells](std::size_t c) { return meanOf(cells[c].allNodes()); });
    storeInOrder<Records3D>(chooseOrder<Records3D>(storage, faces, cells, centres), highest + 1);
    if (!buildNeighbourLists<Records3D>(cells))
        return false;
    listSlots<Records3D>(faces, cells);
    centres = asCellsLie(std::move(centres), mesh.cells3D.order());
    shapeFaces(centres);
    return shapeCells(cells, centres);
}

} // namespace

bool buildGeometry3D() {
    return buildGeometry3D(Storage::automatic);
}

bool buildGeometry3D(Storage storage) {
    return buildWithinMemory(build, storage);
}

double minFaceArea3D() {
    return smallestOfFaces<FaceRecord3D>(mesh.faces3D, [](const FaceRecord3D& f) { return f.area; });
}

} // namespace fluvane
