// Couette and Poiseuille flow and a developing channel against exact profiles.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"
#include "profile_zones.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

double parabola(double y) {
    return 6.0 * y * (1.0 - y);
}

PlaneSetUp channelSetUp(double Re) {
    PlaneSetUp s;
    s.ReOrRa = Re;
    s.tolerance = 1e-9;
    s.interval = 500;
    s.maxSteps = 150000;
    return s;
}

/// Mean of u over the height at x, from n equally spaced values.
double meanVelocity(double x, int n) {
    double mean = 0.0;
    for (int j = 0; j < n; ++j)
        mean += uAt(x, (j + 0.5) / n).value / n;
    return mean;
}

/// Largest deviation of u / mean from the parabola at x.
double parabolaError(double x, int n) {
    const double mean = meanVelocity(x, 2 * n);
    double error = 0.0;
    for (int j = 0; j < n; ++j) {
        const double y = (j + 0.5) / n;
        error = std::max(error, std::abs(uAt(x, y).value / mean - parabola(y)));
    }
    return error;
}

/// Deviation of u from y.
struct LinearError {
    double largest = 0.0, rms = 0.0;
};

LinearError runCouette(const Context& context, Result& result, const QString& name, int n, bool cut,
                       double Ma) {
    const ProfileZones sides(
        n, 1.0, 1.0, [](double y) { return y; }, true);
    const PlaneMesh plane = sides.mesh(cut ? triangles(n) : squares(n));
    PlaneSetUp setUp = channelSetUp(5.0);
    setUp.CFL = cut ? 0.2 : 0.4;
    setUp.Ma = Ma;
    setUp.zones = sides.zones({}, support::movingWall(1.0, 0.0));
    if (result.setUp.isEmpty())
        result.setUp = sides.describe(plane, setUp, "ux = y", "right likewise");
    result.runs.push_back(runSteady(context, name, plane, setUp));
    LinearError error;
    for (const CellRecord& c : mesh.cells2D) {
        const double difference = std::abs(c.u / caseSettings.U0 - c.yc);
        error.largest = std::max(error.largest, difference);
        error.rms += difference * difference / mesh.cellCount;
    }
    error.rms = std::sqrt(error.rms);
    return error;
}

Result couette(const Context& context) {
    Result result;
    result.sources << "Exact: u = y.";
    Table table{"Deviation of u from y over all cells, in units of the wall's speed.",
                {"Mesh", "Ma", "largest", "rms"},
                {}};
    const auto add = [&](const QString& words, double Ma, const LinearError& error) {
        table.rows.push_back({words, number(Ma), number(error.largest, 3), number(error.rms, 3)});
    };
    for (const bool cut : {false, true}) {
        LinearError error;
        for (const int n : context.quick() ? std::vector{8, 16} : std::vector{8, 16, 32}) {
            error = runCouette(context, result, QString(cut ? "triangles_%1" : "squares_%1").arg(n), n, cut,
                               0.05);
            add((cut ? triangles(n) : squares(n)).words, 0.05, error);
        }
        result.bands.push_back(
            {cut ? "largest deviation, triangles" : "largest deviation, squares", error.largest, 0.0, 2e-3});
    }
    for (const double Ma : {0.1, 0.025})
        add(squares(16).words, Ma, runCouette(context, result, QString("Ma_%1").arg(Ma), 16, false, Ma));
    result.tables.push_back(table);
    result.remarks << "The scheme has the linear profile on any mesh; what is left does not fall with the "
                      "mesh but with the Mach number: it is compressibility.";
    return result;
}

Result poiseuille(const Context& context) {
    constexpr double length = 3.0;
    Result result;
    result.sources << "Exact: u = 6 y (1 - y) times the mean.";
    Table table{
        "Largest deviation of u / mean from the parabola half way down the channel, in units of the mean.",
        {"Mesh", "deviation", "order", "mean there / mean typed", "mass out / mass in"},
        {}};
    const std::vector<int> sizes = context.quick() ? std::vector{8, 16} : std::vector{8, 16, 32};
    double error = 0.0;
    for (const bool cut : {false, true}) {
        double before = 0.0;
        for (const int n : sizes) {
            const int along = static_cast<int>(length) * n;
            const ProfileZones sides(n, length, 1.0, parabola, false);
            const support::PlaneCells cells = cut ? support::cutRectangles(along, n, length, 1.0)
                                                  : support::rectangles(along, n, length, 1.0);
            const PlaneMesh plane = sides.mesh(boxMesh(
                QString("%1 x %2 %3").arg(along).arg(n).arg(cut ? "squares, each cut in two" : "squares"),
                cells));
            PlaneSetUp setUp = channelSetUp(20.0);
            setUp.CFL = cut ? 0.2 : 0.4;
            setUp.tolerance = 1e-8;
            setUp.zones = sides.zones({}, {});
            if (result.setUp.isEmpty())
                result.setUp = sides.describe(plane, setUp, "ux = 6 y (1 - y)", "right \"Outflow\"");
            result.runs.push_back(
                runSteady(context, QString(cut ? "triangles_%1" : "squares_%1").arg(n), plane, setUp));
            error = parabolaError(length / 2.0, n);
            table.rows.push_back({plane.words, number(error, 3),
                                  before > 0.0 ? number(observedOrder(before, error, 2.0), 3) : QString(),
                                  number(meanVelocity(length / 2.0, 2 * n), 5),
                                  number(sides.massOut() / sides.massIn(), 6)});
            before = error;
        }
        result.bands.push_back(
            {cut ? "deviation, triangles" : "deviation, squares", error, 0.0, context.quick() ? 0.03 : 0.01});
    }
    result.tables.push_back(table);
    return result;
}

/// Where the axis velocity over the mean first reaches 99 % of 1.5.
double developmentLength(double length, int n) {
    double before = 0.0;
    for (int i = 1; i < 100; ++i) {
        const double x = length * i / 100.0;
        const double share = uAt(x, 0.5).value / meanVelocity(x, 2 * n) / 1.485;
        if (share >= 1.0)
            return x - length / 100.0 * (share - 1.0) / (share - before);
        before = share;
    }
    return length;
}

double durst(double Re) {
    return std::pow(std::pow(0.631, 1.6) + std::pow(0.0442 * Re, 1.6), 1.0 / 1.6);
}

Result developing(const Context& context) {
    constexpr double length = 6.0;
    Result result;
    result.sources << "Exact developed profile; development length: F. Durst, S. Ray, B. Unsal, O. A. "
                      "Bayoumi, J. Fluids "
                      "Eng. 127 (2005) 1154-1160.";
    Table table{
        "Even inlet, outflow. Profile at x = 5; length after which the axis has 99 % of its developed value.",
        {"Re", "Mesh", "largest deviation from the parabola / mean", "order", "length", "published",
         "mass out / mass in", "density"},
        {}};
    double error = 0.0;
    for (const double Re : {20.0, 100.0}) {
        if (context.quick() && Re > 20.0)
            continue;
        double before = 0.0;
        for (const int n : context.quick() ? std::vector{8, 16} : std::vector{8, 16, 32}) {
            if (Re > 20.0 && n == 8)
                continue;
            const PlaneMesh plane = boxMesh(QString("%1 x %2 squares").arg(6 * n).arg(n),
                                            support::rectangles(6 * n, n, length, 1.0), length, 1.0);
            PlaneSetUp setUp = channelSetUp(Re);
            setUp.tolerance = 1e-8;
            setUp.zones = {support::movingWall(1.0, 0.0), support::outflowZone(), {}, {}};
            if (result.setUp.isEmpty())
                result.setUp = describe(plane, setUp);
            result.runs.push_back(
                runSteady(context, QString("Re%1_squares_%2").arg(Re).arg(n), plane, setUp));
            error = parabolaError(5.0, n);
            const double reached = developmentLength(length, n);
            table.rows.push_back({number(Re), plane.words, number(error, 3),
                                  before > 0.0 ? number(observedOrder(before, error, 2.0), 3) : QString(),
                                  number(reached, 3), number(durst(Re), 3),
                                  number(-massOutThrough(1) / massOutThrough(0), 6),
                                  number(totalMass() / length, 5)});
            before = error;
            if (Re < 21.0)
                result.bands.push_back(
                    {QString("development length over the published, Re 20, %1 across").arg(n),
                     reached / durst(Re), 0.75, 1.25});
        }
        Series series{"Fluvane, Re " + number(Re), {}, false};
        for (int i = 1; i < 100; ++i) {
            const double x = length * i / 100.0;
            series.points.emplace_back(x, uAt(x, 0.5).value / meanVelocity(x, 64));
        }
        if (result.plots.empty())
            result.plots.push_back(
                {"axis", "Velocity on the axis over the mean of its section.", "x", "u / mean", {}});
        result.plots.front().series.push_back(series);
    }
    result.tables.push_back(table);
    result.pictures.push_back(
        {"field", "u on the finest mesh.", result.runs.back().resultFile, {"--show", "u"}});
    result.bands.push_back({"deviation from the parabola on the finest mesh", error, 0.0, 0.02});
    return result;
}

const Registered couetteCase({24, "couette", "Couette flow", couette, 30});
const Registered poiseuilleCase({25, "poiseuille", "Poiseuille flow", poiseuille, 90});
const Registered developingCase({26, "channel", "Developing channel flow with outflow", developing, 90});

} // namespace

} // namespace fluvane::validation
