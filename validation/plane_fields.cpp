// Reads figures off the 2D fields.
#include "plane_fields.h"

#include "dialogs/case_settings.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace fluvane::validation {

namespace {

constexpr std::size_t terms = 10;
using Row = std::array<double, terms + 1>;

std::size_t nearestCell(double x, double y) {
    std::size_t best = 0;
    double least = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < mesh.cells2D.size(); ++i) {
        const double distance = std::hypot(mesh.cells2D[i].xc - x, mesh.cells2D[i].yc - y);
        if (distance < least) {
            least = distance;
            best = i;
        }
    }
    return best;
}

/// The cell, its least-squares neighbours and theirs.
std::vector<std::size_t> cellsAround(std::size_t centre) {
    std::vector<std::size_t> cells{centre};
    for (int ring = 0; ring < 2; ++ring) {
        const std::size_t known = cells.size();
        for (std::size_t i = 0; i < known; ++i) {
            const CellRecord& cell = mesh.cells2D[cells[i]];
            for (std::int32_t j = 0; j < cell.neighbourCount; ++j)
                cells.push_back(static_cast<std::size_t>(cell.neighbours[j]));
        }
        std::sort(cells.begin(), cells.end());
        cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    }
    return cells;
}

struct Sample {
    double x, y, value;
};

std::vector<Sample> samplesAround(std::size_t centre, const CellValue& cellValue,
                                  const FaceValue& faceValue) {
    std::vector<Sample> samples;
    for (const std::size_t i : cellsAround(centre)) {
        const CellRecord& cell = mesh.cells2D[i];
        samples.push_back({cell.xc, cell.yc, cellValue(cell)});
        for (std::int16_t j = 0; j < cell.faceCount; ++j) {
            const auto f = static_cast<std::size_t>(cell.faces[static_cast<std::size_t>(j)]);
            const FaceRecord& face = mesh.faces2D[f];
            if (face.c1 >= 0)
                continue;
            if (const std::optional<double> value = faceValue(face))
                samples.push_back({face.xf, face.yf, *value});
        }
    }
    return samples;
}

/// Half the extents of a cell.
Vec2 extentsOf(const CellRecord& cell) {
    Vec2 half{0.0, 0.0};
    for (std::int16_t j = 0; j < cell.nodeCount; ++j) {
        const auto p = static_cast<std::size_t>(cell.nodes[static_cast<std::size_t>(j)]);
        half.x = std::max(half.x, std::abs(mesh.pointX[p] - cell.xc));
        half.y = std::max(half.y, std::abs(mesh.pointY[p] - cell.yc));
    }
    return half;
}

/// Solves the normal equations in place by elimination with pivots on the diagonal.
std::array<double, terms> solve(std::array<Row, terms>& rows) {
    for (std::size_t p = 0; p < terms; ++p)
        for (std::size_t r = 0; r < terms; ++r) {
            if (r == p)
                continue;
            const double factor = rows[r][p] / rows[p][p];
            for (std::size_t c = p; c <= terms; ++c)
                rows[r][c] -= factor * rows[p][c];
        }
    std::array<double, terms> unknowns{};
    for (std::size_t p = 0; p < terms; ++p)
        unknowns[p] = rows[p][terms] / rows[p][p];
    return unknowns;
}

template <class Slice>
double carriedOut(int zone, Slice FaceRecord::*distribution) {
    double total = 0.0;
    const auto [first, end] = facesOfZone(zone);
    for (std::int32_t i = first; i < end; ++i) {
        const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        for (std::size_t k = 0; k < static_cast<std::size_t>(velocitySet.velocityCount); ++k) {
            const Vec2 xi = velocitySet.xi2D[k];
            total += (xi.x * face.S0x + xi.y * face.S0y) * (face.*distribution)[k];
        }
    }
    return total;
}

bool isWall(const FaceRecord& face) {
    return face.flowKind != 2;
}

} // namespace

FitAt fitAt(double x, double y, const CellValue& cellValue, const FaceValue& faceValue) {
    const std::size_t centre = nearestCell(x, y);
    const Vec2 scale = extentsOf(mesh.cells2D[centre]);
    std::array<Row, terms> normal{};
    for (const Sample& s : samplesAround(centre, cellValue, faceValue)) {
        const double a = (s.x - x) / scale.x, b = (s.y - y) / scale.y;
        const Row row{1.0, a, b, a * a, a * b, b * b, a * a * a, a * a * b, a * b * b, b * b * b, s.value};
        const double nearness = 1.0 / (0.5 + a * a + b * b);
        const double weight = nearness * nearness;
        for (std::size_t i = 0; i < terms; ++i)
            for (std::size_t j = 0; j <= terms; ++j)
                normal[i][j] += weight * row[i] * row[j];
    }
    const std::array<double, terms> c = solve(normal);
    return {c[0], c[1] / scale.x, c[2] / scale.y};
}

FitAt uAt(double x, double y) {
    return fitAt(
        x, y, [](const CellRecord& c) { return c.u / caseSettings.U0; },
        [](const FaceRecord& f) {
            return isWall(f) ? std::optional<double>(f.u / caseSettings.U0) : std::nullopt;
        });
}

FitAt vAt(double x, double y) {
    return fitAt(
        x, y, [](const CellRecord& c) { return c.v / caseSettings.U0; },
        [](const FaceRecord& f) {
            return isWall(f) ? std::optional<double>(f.v / caseSettings.U0) : std::nullopt;
        });
}

FitAt temperatureAt(double x, double y) {
    return fitAt(
        x, y, [](const CellRecord& c) { return c.T; },
        [](const FaceRecord& f) { return f.thermalKind == 1 ? std::optional<double>(f.T) : std::nullopt; });
}

double integral(const CellValue& cellValue) {
    double total = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        total += c.area * cellValue(c);
    return total;
}

double totalMass() {
    return integral([](const CellRecord& c) { return c.rho; });
}

std::pair<std::int32_t, std::int32_t> facesOfZone(int zone) {
    const auto z = static_cast<std::size_t>(zone);
    return {zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[z - 1], mesh.zoneLastFace[z]};
}

double massOutThrough(int zone) {
    return carriedOut(zone, &FaceRecord::fFace);
}

double heatOutThrough(int zone) {
    return carriedOut(zone, &FaceRecord::gFace);
}

Extreme maximumOf(const std::function<double(double)>& value, double low, double high, int samples) {
    const double spacing = (high - low) / samples;
    double place = low, largest = -std::numeric_limits<double>::max();
    for (int i = 0; i <= samples; ++i) {
        const double here = value(low + i * spacing);
        if (here > largest) {
            largest = here;
            place = low + i * spacing;
        }
    }
    constexpr double golden = 0.6180339887498949;
    double a = std::max(low, place - spacing), b = std::min(high, place + spacing);
    for (int i = 0; i < 30; ++i) {
        const double c = b - golden * (b - a), d = a + golden * (b - a);
        if (value(c) > value(d))
            b = d;
        else
            a = c;
    }
    return {value((a + b) / 2.0), (a + b) / 2.0};
}

} // namespace fluvane::validation
