// Conduction between two circles against the logarithmic profile.
#include "case.h"
#include "dialogs/case_settings.h"
#include "output/result_file.h"
#include "plane_fields.h"
#include "plane_run.h"

#include <cmath>
#include <numbers>

namespace fluvane::validation {

namespace {

constexpr double inner = 0.9, outer = 3.0, diffusivity = 0.003;

double exactTemperature(double r) {
    return std::log(r / outer) / std::log(inner / outer) + 1.0;
}

/// Twice as many cells around as across: with more of them the errors around and across have opposite signs
/// and all but cancel on some meshes, which would show an order that is not there.
PlaneMesh ringMesh(int nr, bool cut) {
    const QString shape = cut ? "triangles" : "quadrilaterals";
    const int nt = cut ? 3 * nr : 2 * nr;
    return {QString("%1 %2, %3 across and %4 around").arg((cut ? 2 : 1) * nr * nt).arg(shape).arg(nr).arg(nt),
            support::ring(nr, nt, inner, outer, cut),
            {"inner", "outer"},
            [](double x, double y) { return std::hypot(x, y) < 2.0 ? 0 : 1; }};
}

PlaneSetUp ringSetUp(bool cut) {
    PlaneSetUp s;
    s.CFL = cut ? 0.2 : 0.4;
    s.flowKind = 2;
    s.heat = true;
    s.Pr = diffusivity;
    s.zones = {support::wallAt(2.0), support::wallAt(1.0)};
    s.tolerance = 1e-9;
    s.interval = 500;
    return s;
}

/// Heat that crosses the inner circle over the exact 2 pi alpha / ln(outer / inner).
double heatRatio() {
    return -heatOutThrough(0) * std::log(outer / inner) / (2.0 * std::numbers::pi * caseSettings.alpha);
}

Series profile(const QString& label) {
    Series series{label, {}, false};
    for (int i = 0; i <= 60; ++i) {
        const double r = inner + (outer - inner) * i / 60.0;
        series.points.emplace_back(r, temperatureAt(r, 0.0).value);
    }
    return series;
}

Series exactProfile() {
    Series series{"exact", {}, true};
    for (int i = 0; i <= 14; ++i) {
        const double r = inner + (outer - inner) * i / 14.0;
        series.points.emplace_back(r, exactTemperature(r));
    }
    return series;
}

Result conductionInRing(const Context& context, bool cut) {
    Result result;
    result.sources << "Exact: T = T_i + (T_o - T_i) ln(r / r_i) / ln(r_o / r_i), r_i = 0.9, r_o = 3.";
    const std::vector<int> sizes = context.quick() ? (cut ? std::vector{6, 12} : std::vector{8, 16})
                                   : cut           ? std::vector{6, 12, 18}
                                                   : std::vector{8, 16, 24, 32};
    Table table{"Relative L2 error of the temperature (the `error=` line of the result file).",
                {"Mesh", "error", "order", "tauG / dt", "heat flow / exact"},
                {}};
    Series errors{cut ? "triangles" : "quadrilaterals", {}, false};
    double before = 0.0, error = 0.0, order = 0.0, heat = 0.0;
    int sizeBefore = 0;
    for (const int nr : sizes) {
        const PlaneMesh plane = ringMesh(nr, cut);
        const PlaneSetUp setUp = ringSetUp(cut);
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, setUp);
        result.runs.push_back(runSteady(context, QString(cut ? "tri_%1" : "quad_%1").arg(nr), plane, setUp));
        error = exactSolutionError();
        heat = heatRatio();
        order = before > 0.0 ? observedOrder(before, error, double(nr) / sizeBefore) : 0.0;
        table.rows.push_back({plane.words, number(error, 3), before > 0.0 ? number(order, 3) : "",
                              number(caseSettings.tauG / caseSettings.dt, 3), number(heat, 6)});
        errors.points.emplace_back(1.0 / nr, error);
        before = error;
        sizeBefore = nr;
    }
    result.tables.push_back(table);
    result.plots.push_back({"error",
                            "Error against the spacing across.",
                            "1 / cells across",
                            "relative L2 error",
                            {errors},
                            true,
                            true});
    result.plots.push_back({"profile",
                            "Temperature along the x axis on the finest mesh.",
                            "r",
                            "T",
                            {profile("Fluvane"), exactProfile()}});
    result.pictures.push_back({"field",
                               "Temperature on the finest mesh.",
                               result.runs.back().resultFile,
                               {"--show", "T", "--isolines", "T"}});
    result.bands.push_back({"order between the two finest meshes", order, 1.7, 2.6});
    result.bands.push_back({"error on the finest mesh", error, 0.0, context.quick() ? 8e-3 : 2e-3});
    result.bands.push_back(
        {"heat flow over the exact one", heat, context.quick() ? 0.9 : 0.98, context.quick() ? 1.1 : 1.02});
    return result;
}

const Registered quadrilaterals({10, "annulus-quads", "Conduction in an annulus, quadrilaterals",
                                 [](const Context& c) { return conductionInRing(c, false); }, 60});
const Registered cutInTriangles({11, "annulus-triangles", "Conduction in an annulus, triangles",
                                 [](const Context& c) { return conductionInRing(c, true); }, 60});

} // namespace

} // namespace fluvane::validation
