// 3D meshes face by face, of whatever shape, without their geometry.
#pragma once

#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <vector>

namespace fluvane {

struct TestFace {
    std::vector<int> nodes;
    int c0;
    int c1;
};

/// A mesh of one boundary zone, from line 1 of "hand.msh" on.
inline void setMesh(const std::vector<Vec3>& points, const std::vector<TestFace>& interior,
                    const std::vector<TestFace>& boundary) {
    mesh.clear();
    mesh.sourceName = "hand.msh";
    mesh.faceLineStarts = {{0, 1}};
    mesh.pointCount = static_cast<std::int32_t>(points.size());
    for (const Vec3& p : points) {
        mesh.pointX.push_back(p.x);
        mesh.pointY.push_back(p.y);
        mesh.pointZ.push_back(p.z);
    }
    std::vector<TestFace> all = interior;
    all.insert(all.end(), boundary.begin(), boundary.end());
    mesh.allocateFaces3D(static_cast<std::int32_t>(all.size()));
    for (std::size_t i = 0; i < all.size(); ++i) {
        FaceRecord3D& face = mesh.faces3D[i];
        face.nodeCount = static_cast<std::int32_t>(all[i].nodes.size());
        std::copy_n(all[i].nodes.begin(), std::min<std::size_t>(all[i].nodes.size(), 4), face.nodes.begin());
        face.c0 = all[i].c0;
        face.c1 = all[i].c1;
    }
    mesh.interiorFaceCount = static_cast<std::int32_t>(interior.size());
    if (boundary.empty())
        return;
    mesh.zoneCount = 1;
    mesh.zoneLastFace[0] = static_cast<std::int32_t>(all.size());
}

/// A mesh of cells given by the node lists of their faces.
inline void setMeshOfCells(const std::vector<Vec3>& points,
                           const std::vector<std::vector<std::vector<int>>>& cells) {
    std::map<std::vector<int>, std::size_t> seen;
    std::vector<TestFace> faces;
    for (std::size_t c = 0; c < cells.size(); ++c) {
        for (const std::vector<int>& nodes : cells[c]) {
            std::vector<int> key = nodes;
            std::sort(key.begin(), key.end());
            const auto [at, isNew] = seen.try_emplace(key, faces.size());
            if (isNew)
                faces.push_back({nodes, static_cast<int>(c), -1});
            else
                faces[at->second].c1 = static_cast<int>(c);
        }
    }
    std::vector<TestFace> interior;
    std::vector<TestFace> boundary;
    for (const TestFace& face : faces)
        (face.c1 == -1 ? boundary : interior).push_back(face);
    setMesh(points, interior, boundary);
}

inline std::vector<std::vector<int>> tetrahedron(int a, int b, int c, int d) {
    return {{a, b, c}, {a, b, d}, {a, c, d}, {b, c, d}};
}

/// n x n x n unit cubes.
inline void setCubes(int n) {
    std::vector<Vec3> points;
    for (int k = 0; k <= n; ++k)
        for (int j = 0; j <= n; ++j)
            for (int i = 0; i <= n; ++i)
                points.push_back({double(i), double(j), double(k)});
    std::vector<std::vector<std::vector<int>>> cells;
    const int y = n + 1, z = y * y;
    for (int k = 0; k < n; ++k)
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) {
                const int a = k * z + j * y + i;
                cells.push_back({{a, a + y, a + y + 1, a + 1},
                                 {a + z, a + z + 1, a + z + y + 1, a + z + y},
                                 {a, a + 1, a + z + 1, a + z},
                                 {a + y, a + z + y, a + z + y + 1, a + y + 1},
                                 {a, a + z, a + z + y, a + y},
                                 {a + 1, a + y + 1, a + z + y + 1, a + z + 1}});
            }
    setMeshOfCells(points, cells);
}

/// Tetrahedra round a common edge, all centres of which lie in one plane; turned and moved at random.
inline void setFan(int sectors, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    const auto unit = [&] {
        const Vec3 v{normal(random), normal(random), normal(random)};
        const double r = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
        return Vec3{v.x / r, v.y / r, v.z / r};
    };
    const Vec3 e = unit(), t = unit(), shift = unit();
    const Vec3 a{e.y * t.z - e.z * t.y, e.z * t.x - e.x * t.z, e.x * t.y - e.y * t.x};
    const Vec3 b{e.y * a.z - e.z * a.y, e.z * a.x - e.x * a.z, e.x * a.y - e.y * a.x};
    const auto point = [&](double u, double v, double w) {
        return Vec3{shift.x + u * a.x + v * b.x + w * e.x, shift.y + u * a.y + v * b.y + w * e.y,
                    shift.z + u * a.z + v * b.z + w * e.z};
    };
    std::vector<Vec3> points{point(0, 0, 0.5), point(0, 0, -0.5)};
    std::vector<std::vector<std::vector<int>>> cells;
    for (int i = 0; i < sectors; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / sectors;
        points.push_back(point(std::cos(angle), std::sin(angle), 0.0));
        cells.push_back(tetrahedron(0, 1, 2 + i, 2 + (i + 1) % sectors));
    }
    setMeshOfCells(points, cells);
}

} // namespace fluvane
