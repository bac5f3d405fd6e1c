// Conduction in a slab with a wall of constant flux, and with a heat source, against the exact profiles.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

constexpr double diffusivity = 0.003, strength = 0.02;

/// Square, since adiabatic walls slow conduction along them by the order of the relaxation time, which a low
/// strip would show everywhere.
PlaneSetUp slabSetUp(int scaleKind, const support::Zone& right, bool cut) {
    PlaneSetUp s;
    s.CFL = cut ? 0.2 : 0.4;
    s.flowKind = 2;
    s.heat = true;
    s.scaleKind = scaleKind;
    s.scale = strength;
    s.Pr = diffusivity;
    s.zones = {support::wallAt(0.0), right, {}, {}};
    s.tolerance = 1e-9;
    s.interval = 1000;
    return s;
}

/// Largest deviation from the profile up to x = limit, relative to the profile's largest value.
double deviation(const std::function<double(double)>& exact, double largest, double limit = 1.0) {
    double error = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        if (c.xc <= limit)
            error = std::max(error, std::abs(c.T - exact(c.xc)));
    return error / largest;
}

Series profile(const QString& label) {
    Series series{label, {}, false};
    for (int i = 0; i <= 60; ++i)
        series.points.emplace_back(i / 60.0, temperatureAt(i / 60.0, 0.5).value);
    return series;
}

Series exactSeries(const std::function<double(double)>& exact) {
    Series series{"exact", {}, true};
    for (int i = 0; i <= 12; ++i)
        series.points.emplace_back(i / 12.0, exact(i / 12.0));
    return series;
}

std::vector<int> sizesFor(const Context& context) {
    return context.quick() ? std::vector{8, 16} : std::vector{8, 16, 32};
}

Result constantFlux(const Context& context) {
    Result result;
    result.sources << "Exact: T = q x / alpha.";
    Table table{
        "Largest deviation over the largest exact temperature; away from the flux wall and everywhere.",
        {"Mesh", "without the two columns at the wall", "order", "everywhere", "order", "flux / q"},
        {}};
    const auto exact = [](double x) { return strength * x / diffusivity; };
    double inside = 0.0, flux = 0.0;
    for (const bool cut : {false, true}) {
        double insideBefore = 0.0, wholeBefore = 0.0;
        for (const int n : sizesFor(context)) {
            const PlaneMesh plane = cut ? triangles(n) : squares(n);
            const PlaneSetUp setUp = slabSetUp(1, support::wallWithFlux(strength), cut);
            if (result.setUp.isEmpty())
                result.setUp = describe(plane, setUp);
            result.runs.push_back(
                runSteady(context, QString(cut ? "triangles_%1" : "squares_%1").arg(n), plane, setUp));
            inside = deviation(exact, exact(1.0), 1.0 - 2.0 / n);
            flux = -heatOutThrough(1) / strength;
            const double whole = deviation(exact, exact(1.0));
            const bool first = n == sizesFor(context).front();
            table.rows.push_back(
                {plane.words, number(inside, 3),
                 first ? QString() : number(observedOrder(insideBefore, inside, 2.0), 3), number(whole, 3),
                 first ? QString() : number(observedOrder(wholeBefore, whole, 2.0), 3), number(flux, 6)});
            insideBefore = inside;
            wholeBefore = whole;
        }
        result.bands.push_back(
            {cut ? "deviation inside, triangles" : "deviation inside, squares", inside, 0.0, 0.01});
        result.bands.push_back({cut ? "flux over q, triangles" : "flux over q, squares", flux, 0.99, 1.01});
    }
    result.tables.push_back(table);
    result.plots.push_back({"profile",
                            "Temperature along y = 0.5 on the finest triangles.",
                            "x",
                            "T",
                            {profile("Fluvane"), exactSeries(exact)}});
    result.remarks
        << "The slope is the solution itself, so what is left comes from the walls: the flux wall counts "
           "tangential velocities twice in its own temperature, which the cells next to it feel.";
    return result;
}

Result heatSource(const Context& context) {
    Result result;
    result.sources << "Exact: T = S x (1 - x) / (2 alpha), with the source that acts, S = source 2 tauG / (2 "
                      "tauG + dt).";
    Table table{"Largest deviation over the largest exact temperature.",
                {"Mesh", "share of the source that acts", "from the source that acts", "order",
                 "from the source typed"},
                {}};
    double error = 0.0;
    std::function<double(double)> exact;
    for (const bool cut : {false, true}) {
        double before = 0.0;
        for (const int n : sizesFor(context)) {
            const PlaneMesh plane = cut ? triangles(n) : squares(n);
            const PlaneSetUp setUp = slabSetUp(2, support::wallAt(0.0), cut);
            if (result.setUp.isEmpty())
                result.setUp = describe(plane, setUp);
            result.runs.push_back(
                runSteady(context, QString(cut ? "triangles_%1" : "squares_%1").arg(n), plane, setUp));
            const double share = 2.0 * caseSettings.tauG / (2.0 * caseSettings.tauG + caseSettings.dt);
            exact = [share](double x) { return share * strength * x * (1.0 - x) / (2.0 * diffusivity); };
            const auto typed = [](double x) { return strength * x * (1.0 - x) / (2.0 * diffusivity); };
            error = deviation(exact, exact(0.5));
            table.rows.push_back({plane.words, number(share, 4), number(error, 3),
                                  before > 0.0 ? number(observedOrder(before, error, 2.0), 3) : QString(),
                                  number(deviation(typed, typed(0.5)), 3)});
            before = error;
        }
        result.bands.push_back(
            {cut ? "deviation, triangles" : "deviation, squares", error, 0.0, context.quick() ? 0.04 : 0.02});
    }
    result.tables.push_back(table);
    result.plots.push_back({"profile",
                            "Temperature along y = 0.5 on the finest triangles.",
                            "x",
                            "T",
                            {profile("Fluvane"), exactSeries(exact)}});
    result.remarks
        << "Of the source typed only the share 2 tauG / (2 tauG + dt) acts; it depends on the time step and "
           "tends to 1 on fine meshes. Divide the source wanted by the share before typing it.";
    return result;
}

const Registered flux({20, "slab-flux", "Slab with constant flux", constantFlux, 60});
const Registered source({21, "slab-source", "Slab with a heat source", heatSource, 60});

} // namespace

} // namespace fluvane::validation
