// The 2D geometry written the plainest way, cell by cell from the rules, to compare with bit for bit.
#pragma once

#include "mesh/mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace fluvane::testing {

struct PlainCell2D {
    std::vector<std::int32_t> faces, nodes, neighbours;
    std::vector<Vec2> S, lsq;
    double xc = 0.0, yc = 0.0, area = 0.0;
};

inline Vec2 plainPoint(std::int32_t i) {
    return {mesh.pointX[static_cast<std::size_t>(i)], mesh.pointY[static_cast<std::size_t>(i)]};
}

inline double plainAngle(const PlainCell2D& cell, std::int32_t node) {
    const Vec2 p = plainPoint(node);
    const double dx = cell.xc - p.x, dy = cell.yc - p.y;
    const double r = std::sqrt(dx * dx + dy * dy);
    if (r == 0.0)
        return 0.0;
    const double a = std::acos(dx / r);
    return dy < 0.0 ? 6.2831852 - a : a;
}

inline void addOnce(std::vector<std::int32_t>& list, std::int32_t value) {
    if (std::find(list.begin(), list.end(), value) == list.end())
        list.push_back(value);
}

inline void shapePlainCell(PlainCell2D& cell) {
    double x = 0.0, y = 0.0;
    for (const std::int32_t node : cell.nodes) {
        x += plainPoint(node).x;
        y += plainPoint(node).y;
    }
    cell.xc = x / static_cast<double>(cell.nodes.size());
    cell.yc = y / static_cast<double>(cell.nodes.size());
    for (std::size_t i = 0; i < cell.nodes.size(); ++i)
        for (std::size_t j = i + 1; j < cell.nodes.size(); ++j)
            if (plainAngle(cell, cell.nodes[j]) > plainAngle(cell, cell.nodes[i]))
                std::swap(cell.nodes[i], cell.nodes[j]);
    Vec2 sum;
    for (std::size_t k = 0; k + 1 < cell.faces.size(); ++k) {
        const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(cell.faces[k])];
        const Vec2 p0 = plainPoint(face.n0), p1 = plainPoint(face.n1);
        Vec2 S{p0.y - p1.y, p1.x - p0.x};
        if (((p0.x + p1.x) / 2 - cell.xc) * S.x + ((p0.y + p1.y) / 2 - cell.yc) * S.y < 0.0)
            S = {-S.x, -S.y};
        cell.S.push_back(S);
        sum.x += S.x;
        sum.y += S.y;
    }
    cell.S.push_back({-sum.x, -sum.y});
    const Vec2 a = plainPoint(cell.nodes[0]), b = plainPoint(cell.nodes[1]), c = plainPoint(cell.nodes[2]);
    if (cell.nodes.size() == 3) {
        cell.area = -0.5 * (b.x * (c.y - a.y) + a.x * (b.y - c.y) + c.x * (a.y - b.y));
    } else {
        const Vec2 d = plainPoint(cell.nodes[3]);
        cell.area = -0.5 * (b.x * (c.y - a.y) + a.x * (b.y - d.y) + c.x * (d.y - b.y) + d.x * (a.y - c.y));
    }
}

inline void weighPlainCell(PlainCell2D& cell, const std::vector<PlainCell2D>& cells) {
    double Sxx = 0.0, Syy = 0.0, Sxy = 0.0;
    const auto distance = [&](std::int32_t j) {
        const PlainCell2D& other = cells[static_cast<std::size_t>(j)];
        return Vec2{cell.xc - other.xc, cell.yc - other.yc};
    };
    for (const std::int32_t j : cell.neighbours) {
        const Vec2 d = distance(j);
        const double w = 1.0 / (d.x * d.x + d.y * d.y);
        Sxx += w * (d.x * d.x);
        Syy += w * (d.y * d.y);
        Sxy += w * d.x * d.y;
    }
    const double det = Sxx * Syy - Sxy * Sxy;
    for (const std::int32_t j : cell.neighbours) {
        const Vec2 d = distance(j);
        const double w = 1.0 / (d.x * d.x + d.y * d.y);
        cell.lsq.push_back({w * (Syy * d.x - Sxy * d.y) / det, w * (Sxx * d.y - Sxy * d.x) / det});
    }
}

/// The cells of the present mesh, of triangles and quadrilaterals, from its points and faces.
inline std::vector<PlainCell2D> plainCells2D() {
    std::vector<PlainCell2D> cells(static_cast<std::size_t>(mesh.cellCount));
    const auto at = [&cells](std::int32_t c) -> PlainCell2D& { return cells[static_cast<std::size_t>(c)]; };
    for (std::int32_t i = 0; i < mesh.totalFaceCount(); ++i) {
        const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        at(face.c0).faces.push_back(i);
        addOnce(at(face.c0).nodes, face.n0);
        if (face.c1 == -1)
            continue;
        at(face.c1).faces.push_back(i);
        addOnce(at(face.c1).nodes, face.n1);
    }
    const auto across = [&](std::int32_t c) {
        std::vector<std::int32_t> others;
        for (const std::int32_t i : at(c).faces) {
            const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
            const std::int32_t other = face.c0 == c ? face.c1 : face.c0;
            if (other != -1)
                others.push_back(other);
        }
        return others;
    };
    for (std::int32_t c = 0; c < mesh.cellCount; ++c) {
        shapePlainCell(at(c));
        at(c).neighbours = across(c);
        for (const std::int32_t near : across(c))
            for (const std::int32_t other : across(near))
                if (other != c)
                    addOnce(at(c).neighbours, other);
    }
    for (PlainCell2D& cell : cells)
        weighPlainCell(cell, cells);
    return cells;
}

} // namespace fluvane::testing
