// Natural convection in a square with a hot and a cold wall against published figures.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

constexpr double prandtl = 0.71;

/// Velocities in units of alpha / L.
struct Figures {
    double nusselt, uMax, uPlace, vMax, vPlace, nusseltMax, nusseltMin;
};

struct Reference {
    double Ra;
    Figures accurate;
    Figures deVahlDavis;
};

const Reference references[] = {{1e3,
                                 {1.1178, 3.6494, 0.8132, 3.6974, 0.1783, 1.5063, 0.6913},
                                 {1.117, 3.649, 0.813, 3.697, 0.178, 1.505, 0.692}},
                                {1e4,
                                 {2.2448, 16.183, 0.8232, 19.628, 0.1189, 3.5311, 0.5850},
                                 {2.238, 16.178, 0.823, 19.617, 0.119, 3.528, 0.586}},
                                {1e5,
                                 {4.5216, 34.741, 0.8546, 68.635, 0.0659, 7.7201, 0.7280},
                                 {4.509, 34.73, 0.855, 68.59, 0.066, 7.717, 0.729}},
                                {1e6,
                                 {8.8252, 64.833, 0.850, 220.57, 0.0378, 17.536, 0.9795},
                                 {8.817, 64.63, 0.850, 219.36, 0.0379, 17.925, 0.989}}};

PlaneSetUp heatedSetUp(const Context& context, double Ra, int n, double Ma = 0.2) {
    PlaneSetUp s;
    // The diffusion that the reconstruction adds shrinks with a longer step. Beyond 0.5 runs break off, and
    // at Ra 1e3, where conduction decides, from 0.5 on.
    s.CFL = Ra > 1e3 ? 0.5 : 0.4;
    s.flowKind = 1;
    // Velocities stay below 0.27 of the reference velocity, so that these Mach numbers are mild.
    s.Ma = Ma;
    s.heat = true;
    s.Pr = prandtl;
    s.ReOrRa = Ra;
    s.zones = {support::wallAt(0.5), support::wallAt(-0.5), {}, {}};
    // The slow change of mass keeps the residual from falling much further; per step, so that the
    // change per unit of time is the same on every mesh.
    s.tolerance = (context.quick() ? 5e-6 : 1e-6) * s.Ma * 128 / n;
    s.interval = 1000;
    s.maxSteps = 200000;
    return s;
}

double wallSlope(double y) {
    return -temperatureAt(0.0, y).dx;
}

struct Measured {
    Figures f;
    double fromScheme; ///< mean Nusselt number by what the distributions carry through the hot wall
    double balance;    ///< heat out of the cold wall over heat into the hot one, less 1
    double massChange;
};

Measured measure(double Ra, int n) {
    const double units = std::sqrt(Ra * prandtl);
    Measured m{};
    for (int j = 0; j < n; ++j)
        m.f.nusselt += wallSlope((j + 0.5) / n) / n;
    const Extreme u = maximumOf([](double y) { return uAt(0.5, y).value; }, 0.5, 0.99, 40);
    const Extreme v = maximumOf([](double x) { return vAt(x, 0.5).value; }, 0.01, 0.5, 60);
    m.f.uMax = u.value * units;
    m.f.uPlace = u.place;
    m.f.vMax = v.value * units;
    m.f.vPlace = v.place;
    m.f.nusseltMax = maximumOf(wallSlope, 0.0, 0.5, 60).value;
    m.f.nusseltMin = -maximumOf([](double y) { return -wallSlope(y); }, 0.8, 1.0, 20).value;
    const double in = -heatOutThrough(0), out = heatOutThrough(1);
    m.fromScheme = in / caseSettings.alpha;
    m.balance = out / in - 1.0;
    m.massChange = totalMass() - 1.0;
    return m;
}

QStringList rowOf(const QString& label, const Figures& f) {
    return {label,
            number(f.nusselt, 5),
            number(f.nusseltMax, 5),
            number(f.nusseltMin, 4),
            QString("%1 (%2)").arg(number(f.uMax, 5)).arg(f.uPlace, 0, 'f', 4),
            QString("%1 (%2)").arg(number(f.vMax, 5)).arg(f.vPlace, 0, 'f', 4)};
}

QStringList errorRow(const QString& label, const Figures& f, const Figures& g) {
    return {label,
            percent(f.nusselt / g.nusselt - 1.0),
            percent(f.nusseltMax / g.nusseltMax - 1.0),
            percent(f.nusseltMin / g.nusseltMin - 1.0),
            percent(f.uMax / g.uMax - 1.0),
            percent(f.vMax / g.vMax - 1.0)};
}

void addPlots(Result& result) {
    Series local{"Fluvane", {}, false};
    for (int i = 1; i < 100; ++i)
        local.points.emplace_back(i / 100.0, wallSlope(i / 100.0));
    result.plots.push_back(
        {"nusselt", "Local Nusselt number of the hot wall on the finest mesh.", "y", "Nu", {local}});
    result.pictures.push_back({"field",
                               "Temperature and streamlines on the finest mesh.",
                               result.runs.back().resultFile,
                               {"--show", "T", "--streamlines"}});
}

/// On squares, or with `clustering` above 0 on rectangles that the walls draw near.
Result heatedSquare(const Context& context, const Reference& reference, const std::vector<int>& sizes,
                    double clustering, double Ma, double band) {
    Result result;
    result.sources
        << "Accurate values: Newton's method on two wall-clustered grids of 129 and 193 points a side, "
           "Richardson-extrapolated; they agree to four digits with M. Hortmann, M. Peric, G. Scheuerer, "
           "Int. J. Numer. Meth. Fluids 11 (1990) 189-207 and P. Le Quere, Computers & Fluids 20 (1991) "
           "29-41."
        << "G. de Vahl Davis, Int. J. Numer. Meth. Fluids 3 (1983) 249-264.";
    Table table{"Mean, largest and smallest Nusselt number of the hot wall by its temperature slope; largest "
                "u on x = "
                "0.5 (at y) and v on y = 0.5 (at x) in units of alpha / L.",
                {"Mesh", "Nu", "Nu max", "Nu min", "u max (y)", "v max (x)"},
                {}};
    Table balance{"What the scheme's own fluxes say, and what is kept.",
                  {"Mesh", "Nu by fluxes", "error", "order", "heat out / heat in - 1", "change of mass"},
                  {}};
    std::vector<QStringList> errors;
    Measured now{};
    double before = 0.0;
    int sizeBefore = 0;
    for (const int n : sizes) {
        const PlaneMesh plane = clustering > 0.0 ? wallClusteredRectangles(n, clustering) : squares(n);
        const PlaneSetUp setUp = heatedSetUp(context, reference.Ra, n, Ma);
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, setUp);
        result.runs.push_back(runSteady(context, QString("mesh_%1").arg(n), plane, setUp));
        now = measure(reference.Ra, n);
        const double error = now.f.nusselt / reference.accurate.nusselt - 1.0;
        table.rows.push_back(rowOf(plane.words, now.f));
        errors.push_back(errorRow("error, " + plane.words, now.f, reference.accurate));
        balance.rows.push_back(
            {plane.words, number(now.fromScheme, 5),
             percent(now.fromScheme / reference.accurate.nusselt - 1.0),
             sizeBefore > 0 ? number(observedOrder(before, error, double(n) / sizeBefore), 3) : QString(),
             number(now.balance, 2), number(now.massChange, 2)});
        before = error;
        sizeBefore = n;
    }
    table.rows.push_back(rowOf("accurate", reference.accurate));
    table.rows.push_back(rowOf("de Vahl Davis", reference.deVahlDavis));
    table.rows.insert(table.rows.end(), errors.begin(), errors.end());
    balance.header[3] = "order of the error of Nu by slope";
    result.tables = {table, balance};
    addPlots(result);
    result.bands.push_back({"error of Nu on the finest mesh", before, -band, band});
    const double largest = std::max(std::abs(now.f.uMax / reference.accurate.uMax - 1.0),
                                    std::abs(now.f.vMax / reference.accurate.vMax - 1.0));
    result.bands.push_back({"error of the largest velocities on the finest mesh", largest, 0.0, 3.0 * band});
    result.bands.push_back({"heat out over heat in, less 1", now.balance, -0.01, 0.01});
    return result;
}

Result at1e3(const Context& c) {
    return heatedSquare(c, references[0], {32, 64, 96}, 0.0, 0.2, 0.005);
}
Result at1e4(const Context& c) {
    return c.quick() ? heatedSquare(c, references[1], {24, 32}, 0.0, 0.2, 0.05)
                     : heatedSquare(c, references[1], {32, 64, 96}, 0.0, 0.2, 0.005);
}
Result at1e5(const Context& c) {
    return heatedSquare(c, references[2], {32, 64, 96}, 0.0, 0.2, 0.01);
}
Result at1e5Clustered(const Context& c) {
    return heatedSquare(c, references[2], {32, 48, 72}, 1.5, 0.2, 0.005);
}
Result at1e6Clustered(const Context& c) {
    return heatedSquare(c, references[3], {32, 48, 72}, 1.8, 0.3, 0.01);
}

/// What Mach number, time step and wall-clustered cells do to the error.
Result choices(const Context& context) {
    const Reference& reference = references[2];
    const int n = context.quick() ? 24 : 32;
    Result result;
    result.sources << "The accurate values of Ra 1e5.";
    Table table{
        "Error of the Nusselt number and of the largest velocities at Ra 1e5, one choice changed at a time.",
        {"Choice", "Mesh", "Nu by slope", "Nu by fluxes", "u max", "v max"},
        {}};
    const auto run = [&](const QString& words, const PlaneMesh& plane, double Ma, double CFL) {
        PlaneSetUp s = heatedSetUp(context, reference.Ra, n);
        s.tolerance *= Ma * CFL / (s.Ma * s.CFL);
        s.Ma = Ma;
        s.CFL = CFL;
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, s);
        result.runs.push_back(runSteady(context, QString("run_%1").arg(result.runs.size()), plane, s));
        const Measured m = measure(reference.Ra, 2 * n);
        const QStringList errors = errorRow("", m.f, reference.accurate);
        const double byFluxes = m.fromScheme / reference.accurate.nusselt - 1.0;
        table.rows.push_back({words, plane.words, errors[1], percent(byFluxes), errors[4], errors[5]});
        result.bands.push_back({words + ", error of Nu by fluxes", byFluxes, -0.15, 0.05});
    };
    run("as in the other cases", squares(n), 0.2, 0.5);
    run("clustered", wallClusteredRectangles(n, 1.5), 0.2, 0.5);
    if (!context.quick()) {
        run("Ma 0.4", squares(n), 0.4, 0.5);
        run("CFL 0.4", squares(n), 0.2, 0.4);
        run("CFL 0.4 and Ma 0.1", squares(n), 0.1, 0.4); // CFL 0.5 breaks off
        run("CFL 0.2", squares(n), 0.2, 0.2);
    }
    result.tables.push_back(table);
    return result;
}

const Registered choicesCase({46, "natural-choices",
                              "Natural convection: Mach number, time step and clustered cells", choices, 60});
const Registered ra1e3({40, "natural-1e3", "Natural convection in a square, Ra 1e3", at1e3, 60, false});
const Registered ra1e4({41, "natural-1e4", "Natural convection in a square, Ra 1e4", at1e4, 100});
const Registered ra1e5({42, "natural-1e5", "Natural convection in a square, Ra 1e5", at1e5, 180, false});
const Registered ra1e5Clustered({43, "natural-1e5-clustered",
                                 "Natural convection in a square, Ra 1e5, clustered cells", at1e5Clustered,
                                 200, false});
const Registered ra1e6Clustered({44, "natural-1e6-clustered",
                                 "Natural convection in a square, Ra 1e6, clustered cells", at1e6Clustered,
                                 450, false});

} // namespace

} // namespace fluvane::validation
