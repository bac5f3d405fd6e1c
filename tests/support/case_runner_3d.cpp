// Steps 3D cases to their steady state and reads figures off the fields.
#include "support/case_runner_3d.h"

#include "mesh/mesh.h"
#include "setup/boundary_assignment.h"
#include "solver3d/time_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <vector>

namespace fluvane::support {

namespace {

/// Faces first .. second - 1 of the zone.
std::pair<std::int32_t, std::int32_t> facesOf(int zone) {
    const auto z = static_cast<std::size_t>(zone);
    return {zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[z - 1], mesh.zoneLastFace[z]};
}

template <class Slice>
double carriedThrough(int zone, Slice FaceRecord3D::*distribution) {
    double total = 0.0;
    for (auto [i, end] = facesOf(zone); i < end; ++i) {
        const FaceRecord3D& face = mesh.faces3D[static_cast<std::size_t>(i)];
        for (std::size_t k = 0; k < static_cast<std::size_t>(velocitySet.velocityCount); ++k) {
            const Vec3 xi = velocitySet.xi3D[k];
            total +=
                (xi.x * face.n0x + xi.y * face.n0y + xi.z * face.n0z) * face.area * (face.*distribution)[k];
        }
    }
    return total;
}

constexpr std::size_t terms = 10;
using Row = std::array<double, terms + 1>;

/// The first unknown of a symmetric positive definite system, by elimination.
double solveForFirst(std::array<Row, terms>& rows) {
    for (std::size_t p = terms; p-- > 0;) {
        if (!(std::abs(rows[p][p]) > 0.0))
            std::abort();
        for (std::size_t r = 0; r < p; ++r) {
            const double factor = rows[r][p] / rows[p][p];
            for (std::size_t c = 0; c <= terms; ++c)
                rows[r][c] -= factor * rows[p][c];
        }
    }
    return rows[0][terms] / rows[0][0];
}

} // namespace

void assignZone(int zone, const Zone3D& c) {
    const auto [first, end] = facesOf(zone);
    assignBoundary3D(first, end, c.velocity.x, c.velocity.y, c.velocity.z, c.flowKind, c.thermalKind,
                     c.value);
}

double residual3D() {
    double numU = 0.0, denU = 1e-30, numT = 0.0, denT = 1e-30;
    for (const CellRecord3D& c : mesh.cells3D) {
        const double du = c.u - c.uPrev, dv = c.v - c.vPrev, dw = c.w - c.wPrev, dT = c.T - c.TPrev;
        numU += du * du + dv * dv + dw * dw;
        denU += c.uPrev * c.uPrev + c.vPrev * c.vPrev + c.wPrev * c.wPrev;
        numT += dT * dT;
        denT += c.TPrev * c.TPrev;
    }
    return std::sqrt(std::max(numU / denU, numT / denT));
}

int runUntilSteady3D(double tolerance, int interval, int maxSteps) {
    int steps = 0;
    while (steps < maxSteps) {
        for (int n = 0; n < interval; ++n)
            step3D();
        steps += interval;
        const double residual = residual3D();
        if (!std::isfinite(residual))
            return -1;
        if (residual < tolerance)
            break;
    }
    return steps;
}

double sampleAt(Vec3 p, const std::function<double(std::size_t)>& cellValue) {
    constexpr std::size_t used = 48;
    std::vector<std::size_t> order(mesh.cells3D.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto distance = [&](std::size_t i) {
        const CellRecord3D& c = mesh.cells3D[i];
        return std::hypot(c.xc - p.x, c.yc - p.y, c.zc - p.z);
    };
    std::partial_sort(order.begin(), order.begin() + used, order.end(),
                      [&](std::size_t a, std::size_t b) { return distance(a) < distance(b); });
    std::array<Row, terms> normal{};
    for (std::size_t j = 0; j < used; ++j) {
        const CellRecord3D& c = mesh.cells3D[order[j]];
        const double x = c.xc - p.x, y = c.yc - p.y, z = c.zc - p.z;
        const Row row{1.0, x, y, z, x * x, y * y, z * z, x * y, x * z, y * z, cellValue(order[j])};
        const double weight = 1.0 / (x * x + y * y + z * z + 0.05);
        for (std::size_t a = 0; a < terms; ++a)
            for (std::size_t b = 0; b <= terms; ++b)
                normal[a][b] += weight * row[a] * row[b];
    }
    return solveForFirst(normal);
}

double massOutThrough(int zone) {
    return carriedThrough(zone, &FaceRecord3D::fFace);
}

double heatOutThrough(int zone) {
    return carriedThrough(zone, &FaceRecord3D::gFace);
}

} // namespace fluvane::support
