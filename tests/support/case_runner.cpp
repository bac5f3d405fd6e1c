// Steps cases to their steady state and reads figures off the fields.
#include "support/case_runner.h"

#include "mesh/mesh.h"
#include "output/terminal.h"
#include "setup/boundary_assignment.h"
#include "solver2d/checks.h"
#include "solver2d/time_step.h"
#include "velocity/lattice_properties.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace fluvane::support {

void useLattice(double CFL) {
    setLatticeProperties(CFL, 1.0 / 3.0);
}

void assignZone(int zone, const Zone& c) {
    const auto z = static_cast<std::size_t>(zone);
    const std::int32_t first = zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[z - 1];
    assignBoundary2D(first, mesh.zoneLastFace[z], c.ux, c.uy, c.flowKind, c.thermalKind, c.value, 0.0);
}

int runUntilSteady(double tolerance, int interval, int maxSteps) {
    setTerminalSink([](const QString&) {});
    int steps = 0;
    bool steady = false;
    while (!steady && steps < maxSteps) {
        for (int n = 0; n < interval; ++n)
            step2D();
        steps += interval;
        if (hasNaN()) {
            steps = -1;
            break;
        }
        steady = checkConvergence2D(tolerance, tolerance, QString());
    }
    setTerminalSink({});
    return steps;
}

double sampleAt(double x, double y, const std::function<double(std::size_t)>& cellValue) {
    constexpr std::size_t used = 6;
    std::vector<std::size_t> order(mesh.cells2D.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto distance = [&](std::size_t i) {
        return std::hypot(mesh.cells2D[i].xc - x, mesh.cells2D[i].yc - y);
    };
    std::partial_sort(order.begin(), order.begin() + used, order.end(),
                      [&](std::size_t a, std::size_t b) { return distance(a) < distance(b); });
    // Normal equations of value = a + b dx + c dy, weighted by the inverse squared distance.
    double s = 0, sx = 0, sy = 0, sxx = 0, sxy = 0, syy = 0, v = 0, vx = 0, vy = 0;
    for (std::size_t j = 0; j < used; ++j) {
        const CellRecord& c = mesh.cells2D[order[j]];
        const double dx = c.xc - x, dy = c.yc - y, value = cellValue(order[j]);
        const double w = 1.0 / (dx * dx + dy * dy + 1e-12);
        s += w;
        sx += w * dx;
        sy += w * dy;
        sxx += w * dx * dx;
        sxy += w * dx * dy;
        syy += w * dy * dy;
        v += w * value;
        vx += w * dx * value;
        vy += w * dy * value;
    }
    const double det = s * (sxx * syy - sxy * sxy) - sx * (sx * syy - sxy * sy) + sy * (sx * sxy - sxx * sy);
    return (v * (sxx * syy - sxy * sxy) - sx * (vx * syy - sxy * vy) + sy * (vx * sxy - sxx * vy)) / det;
}

double leftWallNusselt(int n, double wallTemperature) {
    const double h = 1.0 / n;
    double total = 0.0;
    for (int j = 0; j < n; ++j) {
        const double first = mesh.cells2D[static_cast<std::size_t>(j * n)].T;
        const double second = mesh.cells2D[static_cast<std::size_t>(j * n + 1)].T;
        // Quadratic through the wall and the centres at h/2 and 3h/2.
        total += -(-8.0 * wallTemperature + 9.0 * first - second) / (3.0 * h);
    }
    return total / n;
}

} // namespace fluvane::support
