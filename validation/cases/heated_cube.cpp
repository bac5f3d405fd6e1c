// Natural convection in a cube with a hot and a cold wall against published Nusselt numbers.
#include "case.h"
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "space_run.h"

namespace fluvane::validation {

namespace {

struct Reference {
    double Ra;
    double tric, fusegi, wakashima; ///< mean Nusselt number of the hot wall
};

constexpr Reference at1e4{1e4, 2.0540, 2.100, 2.0624};
constexpr Reference at1e5{1e5, 4.3370, 4.361, 4.3665};

constexpr double clustering = 1.5;

SpaceSetUp heatedSetUp(double Ra, const SpaceMesh& space) {
    SpaceSetUp s;
    // The diffusion that the reconstruction adds shrinks with a longer step; from 0.4 on runs do not settle.
    s.CFL = 0.35;
    s.flowKind = 1;
    s.heat = true;
    s.L = space.side;
    // Velocities stay below 0.3 of the reference velocity, so that this Mach number is mild.
    s.Ma = 0.4;
    s.ReOrRa = Ra;
    s.zones = std::vector<support::Zone3D>(6);
    s.zones[0] = {{}, 0, 1, 0.5};
    s.zones[1] = {{}, 0, 1, -0.5};
    // The slow change of mass keeps the residual from falling much further.
    s.tolerance = 1e-4 / space.side;
    return s;
}

struct Measured {
    double hot = 0.0, cold = 0.0; ///< Nusselt numbers by what the distributions carry
    double massChange = 0.0;
    double asymmetry = 0.0;
};

Measured measure() {
    const double L = caseSettings.L;
    Measured m;
    m.hot = -support::heatOutThrough(0) / (caseSettings.alpha * L);
    m.cold = support::heatOutThrough(1) / (caseSettings.alpha * L);
    m.massChange = massChange3D();
    m.asymmetry = asymmetry3D();
    return m;
}

QStringList plainRow(const QString& label, double Nu, const Reference& reference) {
    return {label, number(Nu, 5), percent(Nu / reference.tric - 1.0), "", "", "", ""};
}

void addPublished(Result& result, const Reference& reference) {
    result.sources
        << "E. Tric, G. Labrosse, M. Betrouni, Int. J. Heat Mass Transfer 43 (2000) 4043-4056 (the "
           "measure here). T. Fusegi, J. M. Hyun, K. Kuwahara, B. Farouk, Int. J. Heat Mass Transfer "
           "34 (1991) 1543-1557, is up to 2 % higher. S. Wakashima, T. S. Saitoh, Int. J. Heat Mass "
           "Transfer 47 (2004) 845-853.";
    const std::pair<QString, double> published[] = {{"Tric and others", reference.tric},
                                                    {"Fusegi and others", reference.fusegi},
                                                    {"Wakashima & Saitoh", reference.wakashima}};
    for (const auto& [label, Nu] : published) {
        result.tables.front().rows.push_back(plainRow(label, Nu, reference));
        result.plots.front().series.push_back({label, {{0.0, Nu}}, true});
    }
}

void addBands(Result& result, const Measured& finest, double low, double high) {
    result.bands.push_back({"Nu on the finest mesh", finest.hot, low, high});
    result.bands.push_back({"heat out over heat in, less 1", finest.cold / finest.hot - 1.0, -4e-3, 4e-3});
    result.bands.push_back({"difference from the mirror image", finest.asymmetry, 0.0, 2e-3});
}

Result heatedCube(const Context& context, const Reference& reference, const std::vector<int>& sizes,
                  double low, double high) {
    Result result;
    Table table{"Mean Nusselt number of the hot wall, by the scheme's own fluxes; largest difference of the "
                "velocity from its mirror image about the middle plane, in units of U0.",
                {"Mesh", "Nu", "error", "order", "heat out / heat in - 1", "change of mass", "asymmetry"},
                {}};
    Series ours{"Fluvane", {}, false};
    Measured now, before;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const int n = sizes[i];
        const double refinement = i > 0 ? double(n) / sizes[i - 1] : 0.0;
        const SpaceMesh space = wallClusteredCube(n, clustering);
        const SpaceSetUp setUp = heatedSetUp(reference.Ra, space);
        result.runs.push_back(runSteady3D(context, QString("cubes_%1").arg(n), space, setUp));
        if (result.setUp.isEmpty())
            result.setUp = describe(space, setUp, result.runs.back());
        before = now;
        now = measure();
        const double error = now.hot - reference.tric, errorBefore = before.hot - reference.tric;
        table.rows.push_back({space.words, number(now.hot, 5), percent(error / reference.tric),
                              i > 0 ? number(observedOrder(errorBefore, error, refinement), 3) : QString(),
                              number(now.cold / now.hot - 1.0, 2), number(now.massChange, 2),
                              number(now.asymmetry, 2)});
        if (i > 0 && i + 1 == sizes.size())
            table.rows.push_back(plainRow("the two finest, extrapolated at second order",
                                          now.hot + (now.hot - before.hot) / (refinement * refinement - 1.0),
                                          reference));
        ours.points.emplace_back(1.0 / n, now.hot);
    }
    result.tables.push_back(table);
    result.plots.push_back(
        {"nusselt", "Mean Nusselt number against the spacing.", "1 / bricks a side", "Nu", {ours}});
    addPublished(result, reference);
    result.pictures.push_back(
        {"field",
         "Temperature in the plane of symmetry on the finest mesh.",
         result.runs.back().resultFile,
         {"--slice", QString("y=%1").arg(caseSettings.L / 2.0), "--show", "T", "--vectors"}});
    addBands(result, now, low, high);
    result.remarks
        << "The mesh is its own mirror image; the flow is so only to within the difference in the table, "
           "which is of the size of the scheme's error.";
    return result;
}

Result ra1e4(const Context& context) {
    return context.quick() ? heatedCube(context, at1e4, {8}, 1.91, 1.98)
                           : heatedCube(context, at1e4, {8, 12, 16}, 2.023, 2.085);
}

Result ra1e5(const Context& context) {
    return heatedCube(context, at1e5, {8, 12, 16}, 4.272, 4.402);
}

const Registered case1e4({78, "heated-cube-1e4", "Natural convection in a cube, Ra 1e4", ra1e4, 400});
const Registered case1e5({79, "heated-cube-1e5", "Natural convection in a cube, Ra 1e5", ra1e5, 750, false});

} // namespace

} // namespace fluvane::validation
