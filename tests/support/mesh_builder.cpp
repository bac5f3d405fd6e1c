// Builds meshes from cells by pairing their edges.
#include "support/mesh_builder.h"

#include "dialogs/case_settings.h"
#include "mesh/geometry_2d.h"
#include "mesh/mesh.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <unordered_map>

namespace fluvane::support {

namespace {

struct Edge {
    std::int32_t n0, n1, c0, c1;
};

int nodeCountOf(const std::array<std::int32_t, 4>& cell) {
    return cell[3] < 0 ? 3 : 4;
}

std::vector<Edge> edgesOf(const PlaneCells& plane) {
    std::vector<Edge> edges;
    std::unordered_map<std::uint64_t, std::size_t> seen;
    edges.reserve(plane.cells.size() * 5 / 2);
    seen.reserve(plane.cells.size() * 5 / 2);
    for (std::size_t c = 0; c < plane.cells.size(); ++c) {
        const auto& cell = plane.cells[c];
        const int n = nodeCountOf(cell);
        for (int j = 0; j < n; ++j) {
            const std::int32_t a = cell[static_cast<std::size_t>(j)];
            const std::int32_t b = cell[static_cast<std::size_t>((j + 1) % n)];
            const auto low = static_cast<std::uint64_t>(std::min(a, b));
            const auto high = static_cast<std::uint64_t>(std::max(a, b));
            const auto [entry, isNew] = seen.try_emplace(low << 32 | high, edges.size());
            if (isNew)
                edges.push_back({a, b, static_cast<std::int32_t>(c), -1});
            else
                edges[entry->second].c1 = static_cast<std::int32_t>(c);
        }
    }
    return edges;
}

/// Two triangles of a quadrilateral, cut along one diagonal or the other.
void cut(PlaneCells& plane, const std::array<std::int32_t, 4>& q, bool rising) {
    if (rising) {
        plane.cells.push_back({q[0], q[1], q[2], -1});
        plane.cells.push_back({q[0], q[2], q[3], -1});
    } else {
        plane.cells.push_back({q[0], q[1], q[3], -1});
        plane.cells.push_back({q[1], q[2], q[3], -1});
    }
}

std::array<std::int32_t, 4> gridCell(int i, int j, int row) {
    const std::int32_t a = j * row + i;
    return {a, a + 1, a + 1 + row, a + row};
}

PlaneCells grid(int nx, int ny, double lx, double ly, bool triangles) {
    PlaneCells plane;
    for (int j = 0; j <= ny; ++j) {
        for (int i = 0; i <= nx; ++i) {
            plane.x.push_back(lx * i / nx);
            plane.y.push_back(ly * j / ny);
        }
    }
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            if (triangles)
                cut(plane, gridCell(i, j, nx + 1), (i + j) % 2 == 0);
            else
                plane.cells.push_back(gridCell(i, j, nx + 1));
        }
    }
    return plane;
}

void fillSet(const std::vector<std::array<int, 2>>& directions, const std::vector<double>& weights) {
    velocitySet = VelocitySet{};
    velocitySet.velocityCount = static_cast<std::int32_t>(directions.size());
    for (std::size_t k = 0; k < directions.size(); ++k) {
        velocitySet.xi2D[k] = {double(directions[k][0]), double(directions[k][1])};
        velocitySet.weights[k] = weights[k];
        for (std::size_t o = 0; o < directions.size(); ++o) {
            if (directions[o][0] == -directions[k][0] && directions[o][1] == -directions[k][1])
                velocitySet.opposite[k] = static_cast<std::int32_t>(o);
        }
    }
}

} // namespace

PlaneCells rectangles(int nx, int ny, double lx, double ly) {
    return grid(nx, ny, lx, ly, false);
}

PlaneCells cutRectangles(int nx, int ny, double lx, double ly) {
    return grid(nx, ny, lx, ly, true);
}

PlaneCells ring(int nr, int nt, double inner, double outer, bool triangles) {
    PlaneCells plane;
    for (int i = 0; i <= nr; ++i) {
        const double r = inner * std::pow(outer / inner, double(i) / nr);
        for (int t = 0; t < nt; ++t) {
            // Half a sector off the axes, so that no node lies exactly level with a centre.
            const double angle = 2.0 * std::numbers::pi * (t + 0.5) / nt;
            plane.x.push_back(r * std::cos(angle));
            plane.y.push_back(r * std::sin(angle));
        }
    }
    for (int i = 0; i < nr; ++i) {
        for (int t = 0; t < nt; ++t) {
            const int next = (t + 1) % nt;
            const std::array<std::int32_t, 4> q{i * nt + t, (i + 1) * nt + t, (i + 1) * nt + next,
                                                i * nt + next};
            if (triangles)
                cut(plane, q, (i + t) % 2 == 0);
            else
                plane.cells.push_back(q);
        }
    }
    return plane;
}

void distort(PlaneCells& plane, double amplitude) {
    constexpr double pi = std::numbers::pi;
    for (std::size_t i = 0; i < plane.x.size(); ++i) {
        const double x = plane.x[i], y = plane.y[i];
        const double bump = amplitude * std::sin(pi * x) * std::sin(pi * y);
        plane.x[i] = x + bump * std::cos(3.0 * y);
        plane.y[i] = y + bump * std::sin(1.0 + 2.0 * x);
    }
}

void shuffleCells(PlaneCells& plane, unsigned seed) {
    std::mt19937 generator(seed);
    std::shuffle(plane.cells.begin(), plane.cells.end(), generator);
}

ZoneOfEdge sidesOfBox(double lx, double ly) {
    return [lx, ly](double x, double y) {
        if (x < 1e-9 * lx)
            return 0;
        if (x > lx * (1.0 - 1e-9))
            return 1;
        return y < 0.5 * ly ? 2 : 3;
    };
}

void makeMesh(const PlaneCells& plane, int zoneCount, const ZoneOfEdge& zoneOf) {
    const std::vector<Edge> edges = edgesOf(plane);
    std::vector<std::vector<Edge>> zones(static_cast<std::size_t>(zoneCount));
    std::vector<Edge> ordered;
    for (const Edge& e : edges) {
        if (e.c1 >= 0) {
            ordered.push_back(e);
            continue;
        }
        const auto a = static_cast<std::size_t>(e.n0), b = static_cast<std::size_t>(e.n1);
        const int zone = zoneOf((plane.x[a] + plane.x[b]) / 2.0, (plane.y[a] + plane.y[b]) / 2.0);
        zones[static_cast<std::size_t>(zone)].push_back(e);
    }
    mesh.clear();
    mesh.pointCount = static_cast<std::int32_t>(plane.x.size());
    mesh.pointX = plane.x;
    mesh.pointY = plane.y;
    mesh.interiorFaceCount = static_cast<std::int32_t>(ordered.size());
    mesh.zoneCount = zoneCount;
    for (std::size_t z = 0; z < zones.size(); ++z) {
        ordered.insert(ordered.end(), zones[z].begin(), zones[z].end());
        mesh.zoneLastFace[z] = static_cast<std::int32_t>(ordered.size());
        mesh.zoneNames.push_back(QString("zone%1").arg(z));
    }
    mesh.allocateFaces2D(static_cast<std::int32_t>(ordered.size()));
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        mesh.faces2D[i].n0 = ordered[i].n0;
        mesh.faces2D[i].n1 = ordered[i].n1;
        mesh.faces2D[i].c0 = ordered[i].c0;
        mesh.faces2D[i].c1 = ordered[i].c1;
    }
    if (!buildGeometry2D())
        std::abort();
}

void useD2Q9() {
    fillSet({{0, 0}, {1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 1}, {-1, 1}, {-1, -1}, {1, -1}},
            {4.0 / 9.0, 1.0 / 9.0, 1.0 / 9.0, 1.0 / 9.0, 1.0 / 9.0, 1.0 / 36.0, 1.0 / 36.0, 1.0 / 36.0,
             1.0 / 36.0});
}

void useD2Q13() {
    // Second moments 1/3 and isotropic fourth moments 1/9: 2a + 4b + 8c = 1/3, 2a + 4b + 32c = 1/3, b = 1/36
    // leave c = 0; a small c > 0 keeps every kernel path busy at the price of isotropy.
    const double c = 1.0 / 360.0, b = 1.0 / 36.0, a = (1.0 / 3.0 - 4.0 * b - 8.0 * c) / 2.0;
    fillSet({{0, 0},
             {1, 0},
             {0, 1},
             {-1, 0},
             {0, -1},
             {1, 1},
             {-1, 1},
             {-1, -1},
             {1, -1},
             {2, 0},
             {0, 2},
             {-2, 0},
             {0, -2}},
            {1.0 - 4.0 * (a + b + c), a, a, a, a, b, b, b, b, c, c, c, c});
}

void resetProcessState() {
    caseSettings = CaseSettings{};
    velocitySet = VelocitySet{};
    mesh.clear();
}

} // namespace fluvane::support
