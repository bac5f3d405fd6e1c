// How much Mach number, CFL number, RT and velocity set change a result.
#include "case.h"
#include "dialogs/case_settings.h"
#include "output/result_file.h"
#include "plane_fields.h"
#include "plane_run.h"

#include <cmath>
#include <numbers>

namespace fluvane::validation {

namespace {

struct Choice {
    QString words;
    double Ma = 0.1;
    double CFL = 0.4;
    double RT = 1.0 / 3.0;
    QString velocities = "D2Q9.2Dv";
};

Result cavityChoices(const Context& context) {
    const int n = context.quick() ? 24 : 48;
    Result result;
    result.sources << "Lid-driven cavity at Re 100; accurate values u_min -0.21405, u and v in the middle "
                      "-0.2091 and 0.0575, "
                      "by the differences named with that case.";
    std::vector<Choice> choices{{"as in the other cases"},
                                {"Ma 0.05"},
                                {"Ma 0.2"},
                                {"Ma 0.4"},
                                {"CFL 0.2"},
                                {"CFL 0.5"},
                                {"RT 1"},
                                {"D2Q7"}};
    choices[1].Ma = 0.05;
    choices[2].Ma = 0.2;
    choices[3].Ma = 0.4;
    choices[4].CFL = 0.2;
    choices[5].CFL = 0.5;
    choices[6].RT = 1.0;
    choices[7].velocities = "D2Q7.2Dv";
    Table table{"One choice changed at a time.",
                {"Choice", "Steps", "u_min", "u in the middle", "v in the middle", "change of u_min"},
                {}};
    double usual = 0.0;
    for (const Choice& choice : choices) {
        if (context.quick() && choice.Ma < 0.1)
            continue;
        PlaneSetUp s;
        s.velocityFile = choice.velocities;
        s.Ma = choice.Ma;
        s.CFL = choice.CFL;
        s.RT = choice.RT;
        s.ReOrRa = 100.0;
        s.zones = {{}, {}, {}, support::movingWall(1.0, 0.0)};
        // Per step: the change per unit of time is the same for all.
        s.tolerance = 5e-7 * choice.Ma * choice.CFL;
        s.interval = 1000;
        s.maxSteps = 200000;
        if (result.setUp.isEmpty())
            result.setUp = describe(squares(n), s);
        const QString name = QString("run_%1").arg(result.runs.size());
        result.runs.push_back(runSteady(context, name, squares(n), s));
        const double least = -maximumOf([](double y) { return -uAt(0.5, y).value; }, 0.02, 0.9, 50).value;
        if (usual == 0.0)
            usual = least;
        table.rows.push_back({choice.words, QString::number(result.runs.back().steps),
                              QString::number(least, 'f', 5), QString::number(uAt(0.5, 0.5).value, 'f', 5),
                              QString::number(vAt(0.5, 0.5).value, 'f', 5), percent(least / usual - 1.0)});
        if (choice.words == "RT 1")
            result.bands.push_back({"change of u_min by RT", std::abs(least / usual - 1.0), 0.0, 1e-4});
        if (choice.Ma == 0.2)
            result.bands.push_back({"change of u_min by Ma 0.2", std::abs(least / usual - 1.0), 0.0,
                                    context.quick() ? 0.1 : 0.05});
    }
    result.tables.push_back(table);
    result.remarks
        << "RT only changes the units. Mach and CFL number act through the same thing: lattice units make "
           "the "
           "viscosity U0 L / Re, so that a smaller Mach number leaves less of it beside the diffusion that "
           "the "
           "reconstruction adds, and a longer time step adds more of that here (in the thin layers of "
           "natural convection it adds less). On coarse meshes this outweighs compressibility.";
    return result;
}

Result conductionChoices(const Context& context) {
    constexpr double inner = 0.9, outer = 3.0;
    Result result;
    result.sources << "Exact: the annulus of the first cases.";
    Table table{"Annulus of 16 by 32 quadrilaterals, T = 2 inside, 1 outside.",
                {"Diffusivity", "Velocities", "tauG / dt", "error of T", "heat flow / exact"},
                {}};
    const PlaneMesh plane{"512 quadrilaterals, 16 across and 32 around",
                          support::ring(16, 32, inner, outer, false),
                          {"inner", "outer"},
                          [](double x, double y) { return std::hypot(x, y) < 2.0 ? 0 : 1; }};
    const auto run = [&](double alpha, const QString& velocities) {
        PlaneSetUp s;
        s.velocityFile = velocities;
        s.flowKind = 2;
        s.heat = true;
        s.Pr = alpha;
        s.zones = {support::wallAt(2.0), support::wallAt(1.0)};
        s.tolerance = 1e-9;
        s.interval = 500;
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, s);
        result.runs.push_back(runSteady(context, QString("run_%1").arg(result.runs.size()), plane, s));
        const double heat =
            -heatOutThrough(0) * std::log(outer / inner) / (2.0 * std::numbers::pi * caseSettings.alpha);
        table.rows.push_back({number(alpha), velocities.left(4),
                              number(caseSettings.tauG / caseSettings.dt, 3), number(exactSolutionError(), 3),
                              number(heat, 5)});
        return heat;
    };
    double heat = 0.0;
    for (const double alpha :
         context.quick() ? std::vector{0.01, 0.02} : std::vector{0.001, 0.003, 0.01, 0.02, 0.03})
        heat = run(alpha, "D2Q9.2Dv");
    result.bands.push_back({"heat flow over the exact one, largest diffusivity", heat, 0.95, 1.05});
    run(0.01, "D2Q5.2Dv");
    run(0.01, "D2Q7.2Dv");
    result.tables.push_back(table);
    result.remarks
        << "Two errors compete. A small diffusivity leaves the relaxation time short against the time step, "
           "and the "
           "error of the linear reconstruction acts as extra diffusion: it falls with the mesh at second "
           "order, "
           "but is large on coarse meshes. A large one lengthens the mean free path, which the walls show.";
    return result;
}

const Registered flowChoices({80, "influence-flow", "Influence of Ma, CFL, RT and velocity set: flow",
                              cavityChoices, 120});
const Registered heatChoices({81, "influence-heat", "Influence of diffusivity and velocity set: conduction",
                              conductionChoices, 40});

} // namespace

} // namespace fluvane::validation
