// Builds meshes from tetrahedra by pairing their faces.
#include "support/mesh_builder_3d.h"

#include "dialogs/case_settings.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <unordered_map>

namespace fluvane::support {

namespace {

using Triangle = std::array<std::int32_t, 3>;

struct Face {
    Triangle nodes;
    std::int32_t c0, c1;
};

struct TriangleHash {
    std::size_t operator()(const Triangle& t) const {
        std::uint64_t h = 0;
        for (const std::int32_t n : t)
            h = (h ^ static_cast<std::uint64_t>(n)) * 0x9E3779B97F4A7C15u;
        return static_cast<std::size_t>(h ^ (h >> 29));
    }
};

std::vector<Face> facesOf(const Tetrahedra& tetrahedra) {
    constexpr int opposite[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
    std::vector<Face> faces;
    std::unordered_map<Triangle, std::size_t, TriangleHash> seen;
    faces.reserve(tetrahedra.cells.size() * 9 / 4);
    seen.reserve(tetrahedra.cells.size() * 9 / 4);
    for (std::size_t c = 0; c < tetrahedra.cells.size(); ++c) {
        for (const auto& corners : opposite) {
            Triangle nodes{};
            for (std::size_t i = 0; i < 3; ++i)
                nodes[i] = tetrahedra.cells[c][static_cast<std::size_t>(corners[i])];
            Triangle key = nodes;
            std::sort(key.begin(), key.end());
            const auto [entry, isNew] = seen.try_emplace(key, faces.size());
            if (isNew)
                faces.push_back({nodes, static_cast<std::int32_t>(c), -1});
            else
                faces[entry->second].c1 = static_cast<std::int32_t>(c);
        }
    }
    return faces;
}

Vec3 centreOf(const Tetrahedra& tetrahedra, const Triangle& nodes) {
    Vec3 sum;
    for (const std::int32_t n : nodes) {
        const Vec3& p = tetrahedra.points[static_cast<std::size_t>(n)];
        sum = {sum.x + p.x / 3.0, sum.y + p.y / 3.0, sum.z + p.z / 3.0};
    }
    return sum;
}

/// One middle and four corner tetrahedra; corner bits are x, y, z = 1, 2, 4.
void cutBrick(Tetrahedra& out, const std::array<std::int32_t, 8>& corner, bool mirrored) {
    constexpr int pieces[5][4] = {{0, 3, 5, 6}, {1, 0, 3, 5}, {2, 0, 3, 6}, {4, 0, 5, 6}, {7, 3, 5, 6}};
    for (const auto& piece : pieces) {
        std::array<std::int32_t, 4> cell{};
        for (std::size_t i = 0; i < 4; ++i)
            cell[i] = corner[static_cast<std::size_t>(mirrored ? piece[i] ^ 1 : piece[i])];
        out.cells.push_back(cell);
    }
}

/// A set from its directions, weighted by the number of axes that each uses.
void fillSet(int fullestAxes, bool edges, const std::array<double, 4>& weightOfAxes) {
    velocitySet = VelocitySet{};
    caseSettings.is3D = true;
    std::size_t count = 0;
    for (int axes = 0; axes <= fullestAxes; ++axes) {
        if (axes == 2 && !edges)
            continue;
        for (int x : {0, 1, -1})
            for (int y : {0, 1, -1})
                for (int z : {0, 1, -1})
                    if (x * x + y * y + z * z == axes) {
                        velocitySet.xi3D[count] = {double(x), double(y), double(z)};
                        velocitySet.weights[count++] = weightOfAxes[static_cast<std::size_t>(axes)];
                    }
    }
    velocitySet.velocityCount = static_cast<std::int32_t>(count);
    for (std::size_t k = 0; k < count; ++k)
        for (std::size_t o = 0; o < count; ++o) {
            const Vec3 &a = velocitySet.xi3D[k], &b = velocitySet.xi3D[o];
            if (a.x == -b.x && a.y == -b.y && a.z == -b.z)
                velocitySet.opposite[k] = static_cast<std::int32_t>(o);
        }
}

} // namespace

Tetrahedra boxOfTetrahedra(int nx, int ny, int nz, Vec3 edge) {
    Tetrahedra box;
    for (int k = 0; k <= nz; ++k)
        for (int j = 0; j <= ny; ++j)
            for (int i = 0; i <= nx; ++i)
                box.points.push_back({i * edge.x, j * edge.y, k * edge.z});
    for (int k = 0; k < nz; ++k)
        for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i) {
                std::array<std::int32_t, 8> corner{};
                for (int b = 0; b < 8; ++b)
                    corner[static_cast<std::size_t>(b)] =
                        ((k + (b >> 2)) * (ny + 1) + j + ((b >> 1) & 1)) * (nx + 1) + i + (b & 1);
                cutBrick(box, corner, (i + j + k) % 2 != 0);
            }
    return box;
}

void distort(Tetrahedra& tetrahedra, Vec3 size, double amplitude) {
    constexpr double pi = std::numbers::pi;
    for (Vec3& p : tetrahedra.points) {
        const double x = p.x / size.x, y = p.y / size.y, z = p.z / size.z;
        const double bump = amplitude * std::sin(pi * x) * std::sin(pi * y) * std::sin(pi * z);
        p.x += bump * std::cos(3.0 * y + z);
        p.y += bump * std::sin(1.0 + 2.0 * z);
        p.z += bump * std::cos(1.0 + 2.0 * x - y);
    }
}

void shuffleCells(Tetrahedra& tetrahedra, unsigned seed) {
    std::mt19937 generator(seed);
    std::shuffle(tetrahedra.cells.begin(), tetrahedra.cells.end(), generator);
}

ZoneOfFace sidesOfBox3D(Vec3 size) {
    return [size](Vec3 p) {
        const std::array<double, 6> distance{p.x, size.x - p.x, p.y, size.y - p.y, p.z, size.z - p.z};
        return static_cast<int>(std::min_element(distance.begin(), distance.end()) - distance.begin());
    };
}

void makeMesh(const Tetrahedra& tetrahedra, int zoneCount, const ZoneOfFace& zoneOf) {
    std::vector<std::vector<Face>> zones(static_cast<std::size_t>(zoneCount));
    std::vector<Face> ordered;
    for (const Face& face : facesOf(tetrahedra)) {
        if (face.c1 >= 0)
            ordered.push_back(face);
        else
            zones[static_cast<std::size_t>(zoneOf(centreOf(tetrahedra, face.nodes)))].push_back(face);
    }
    mesh.clear();
    mesh.pointCount = static_cast<std::int32_t>(tetrahedra.points.size());
    for (const Vec3& p : tetrahedra.points) {
        mesh.pointX.push_back(p.x);
        mesh.pointY.push_back(p.y);
        mesh.pointZ.push_back(p.z);
    }
    mesh.interiorFaceCount = static_cast<std::int32_t>(ordered.size());
    mesh.zoneCount = zoneCount;
    for (std::size_t z = 0; z < zones.size(); ++z) {
        ordered.insert(ordered.end(), zones[z].begin(), zones[z].end());
        mesh.zoneLastFace[z] = static_cast<std::int32_t>(ordered.size());
        mesh.zoneNames.push_back(QString("zone%1").arg(z));
    }
    mesh.allocateFaces3D(static_cast<std::int32_t>(ordered.size()));
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        FaceRecord3D& face = mesh.faces3D[i];
        std::copy(ordered[i].nodes.begin(), ordered[i].nodes.end(), face.nodes.begin());
        face.nodeCount = 3;
        face.c0 = ordered[i].c0;
        face.c1 = ordered[i].c1;
    }
    if (!buildGeometry3D())
        std::abort();
}

void useD3Q15() {
    fillSet(3, false, {2.0 / 9.0, 1.0 / 9.0, 0.0, 1.0 / 72.0});
}

void useD3Q19() {
    fillSet(2, true, {1.0 / 3.0, 1.0 / 18.0, 1.0 / 36.0, 0.0});
}

void useD3Q27() {
    fillSet(3, true, {8.0 / 27.0, 2.0 / 27.0, 1.0 / 54.0, 1.0 / 216.0});
}

void useD3Q7() {
    fillSet(1, false, {1.0 / 4.0, 1.0 / 8.0, 0.0, 0.0});
}

} // namespace fluvane::support
