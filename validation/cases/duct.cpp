// Flow through a square duct against the series of developed flow.
#include "case.h"
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "space_run.h"
#include "support/square_duct.h"

#include <cmath>

namespace fluvane::validation {

namespace {

constexpr int heights = 4; ///< of the duct along its length
constexpr double station = 0.75;

SpaceSetUp ductSetUp(int n) {
    SpaceSetUp s;
    s.L = n;
    s.ReOrRa = 15.0;
    s.zones = {{}, {{1.0, 0.0, 0.0}}, {{}, 2}};
    s.tolerance = 1e-7 * 8 / n;
    return s;
}

/// u at three quarters of the length; y and z in units of the side.
double uAt(double y, double z) {
    const double n = caseSettings.L;
    return support::sampleAt({station * heights * n, y * n, z * n},
                             [](std::size_t c) { return mesh.cells3D[c].u; });
}

struct Figures {
    double axis = 0.0, towardsWall = 0.0, towardsCorner = 0.0; ///< in units of the mean
    double rms = 0.0;                                          ///< over ten by ten points
    double mass = 0.0;                                         ///< out over in, less 1
};

Figures measure() {
    constexpr int points = 10;
    Figures f;
    std::vector<double> u, exact;
    double mean = 0.0, exactMean = 0.0; // over the same points: a sum over so few is not the integral
    for (int i = 0; i < points; ++i)
        for (int j = 0; j < points; ++j) {
            const double y = (i + 0.5) / points, z = (j + 0.5) / points;
            u.push_back(uAt(y, z));
            exact.push_back(support::squareDuct(y, z));
            mean += u.back() / (points * points);
            exactMean += exact.back() / (points * points);
        }
    for (std::size_t i = 0; i < u.size(); ++i)
        f.rms += std::pow(u[i] / mean - exact[i] / exactMean, 2) / (points * points);
    f.rms = std::sqrt(f.rms);
    const double unit = mean / exactMean;
    f.axis = uAt(0.5, 0.5) / unit;
    f.towardsWall = uAt(0.75, 0.5) / unit;
    f.towardsCorner = uAt(0.75, 0.75) / unit;
    f.mass = support::massOutThrough(2) / -support::massOutThrough(1) - 1.0;
    return f;
}

Result duct(const Context& context) {
    Result result;
    result.sources
        << "Exact: the series of F. M. White, Viscous Fluid Flow, for developed flow in a square duct.";
    Table table{
        "u in units of its mean three quarters of the way along: on the axis, half-way to a wall, half-way "
        "to a corner; root mean square deviation over 100 points.",
        {"Mesh", "axis", "to the wall", "to the corner", "rms deviation", "order", "mass out / in - 1"},
        {}};
    Plot plot{"profile", "u on the line through the axis, in units of the mean.", "y", "u / mean", {}};
    Figures f;
    double before = 0.0;
    int sizeBefore = 0;
    for (const int n : context.quick() ? std::vector{4, 6} : std::vector{4, 6, 8, 10}) {
        const SpaceMesh space = ductMesh(heights * n, n);
        result.runs.push_back(runSteady3D(context, QString("duct_%1").arg(n), space, ductSetUp(n)));
        if (result.setUp.isEmpty())
            result.setUp = describe(space, ductSetUp(n), result.runs.back());
        f = measure();
        table.rows.push_back(
            {space.words, number(f.axis), number(f.towardsWall), number(f.towardsCorner), number(f.rms, 3),
             sizeBefore > 0 ? number(observedOrder(before, f.rms, double(n) / sizeBefore), 3) : QString(),
             number(f.mass, 2)});
        Series series{QString("%1 cubes across").arg(n), {}, false};
        const double mean = uAt(0.5, 0.5) / f.axis;
        for (int i = 1; i < 40; ++i)
            series.points.emplace_back(i / 40.0, uAt(i / 40.0, 0.5) / mean);
        plot.series.push_back(series);
        before = f.rms;
        sizeBefore = n;
    }
    table.rows.push_back({"exact", number(support::squareDuct(0.5, 0.5)),
                          number(support::squareDuct(0.75, 0.5)), number(support::squareDuct(0.75, 0.75)), "",
                          "", ""});
    Series exact{"exact", {}, true};
    for (int i = 0; i <= 20; ++i)
        exact.points.emplace_back(i / 20.0, support::squareDuct(i / 20.0, 0.5));
    plot.series.push_back(exact);
    result.tables.push_back(table);
    result.plots.push_back(plot);
    const double tolerance = context.quick() ? 0.03 : 0.01;
    result.bands.push_back({"u on the axis over the exact one", f.axis / support::squareDuct(0.5, 0.5),
                            1.0 - tolerance, 1.0 + tolerance});
    result.bands.push_back({"rms deviation on the finest mesh", f.rms, 0.0, tolerance});
    result.bands.push_back({"mass out over mass in, less 1", f.mass, -1e-3, 1e-3});
    return result;
}

const Registered ductCase({74, "duct", "Developed flow in a square duct", duct, 250});

} // namespace

} // namespace fluvane::validation
