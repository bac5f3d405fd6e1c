// The lid-driven square cavity against published and accurate centre lines.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace fluvane::validation {

namespace {

using Line = std::vector<std::pair<double, double>>;

/// What is known of one Reynolds number.
struct Reference {
    double Re;
    Line u, v;         ///< accurate values along x = 0.5 and y = 0.5
    Line ghiaU, ghiaV; ///< Ghia et al., for the plots
    double uMin;
    double centreX, centreY; ///< of the main vortex
    QString source;
};

const QString computed =
    "Accurate centre lines: second-order stream-function/vorticity differences on 257 and 385 "
    "points a side, Richardson-extrapolated, good to 1e-4; the same program gives Botella's "
    "figures at Re 1000 to 1e-4.";
const QString ghia =
    "U. Ghia, K. N. Ghia, C. T. Shin, J. Comput. Phys. 48 (1982) 387-411, tables I and II (symbols in "
    "the plots; too weak by up to 4 % against the accurate values, hence no measure), and the vortex "
    "centres of table V.";

constexpr std::array<double, 15> uPlaces{0.0547, 0.0625, 0.0703, 0.1016, 0.1719, 0.2813, 0.4531, 0.5,
                                         0.6172, 0.7344, 0.8516, 0.9531, 0.9609, 0.9688, 0.9766};
constexpr std::array<double, 15> vPlaces{0.0625, 0.0703, 0.0781, 0.0938, 0.1563, 0.2266, 0.2344, 0.5,
                                         0.8047, 0.8594, 0.9063, 0.9453, 0.9531, 0.9609, 0.9688};

Line lineOf(const std::array<double, 15>& places, const std::array<double, 15>& values) {
    Line line;
    for (std::size_t i = 0; i < places.size(); ++i)
        line.emplace_back(places[i], values[i]);
    return line;
}

Reference reynolds100() {
    return {100.0,
            lineOf(uPlaces, {-0.0372, -0.0420, -0.0466, -0.0644, -0.1017, -0.1577, -0.2140, -0.2091, -0.1388,
                             0.0041, 0.2365, 0.6912, 0.7407, 0.7916, 0.8435}),
            lineOf(vPlaces, {0.0948, 0.1036, 0.1118, 0.1264, 0.1648, 0.1794, 0.1796, 0.0575, -0.2535, -0.2337,
                             -0.1772, -0.1085, -0.0933, -0.0779, -0.0623}),
            {{0.9766, 0.84123},
             {0.9688, 0.78871},
             {0.9609, 0.73722},
             {0.9531, 0.68717},
             {0.8516, 0.23151},
             {0.7344, 0.00332},
             {0.6172, -0.13641},
             {0.5, -0.20581},
             {0.4531, -0.2109},
             {0.2813, -0.15662},
             {0.1719, -0.1015},
             {0.1016, -0.06434},
             {0.0625, -0.04192},
             {0.0547, -0.03717}},
            {{0.9688, -0.05906},
             {0.9609, -0.07391},
             {0.9531, -0.08864},
             {0.9453, -0.10313},
             {0.9063, -0.16914},
             {0.8594, -0.22445},
             {0.8047, -0.24533},
             {0.5, 0.05454},
             {0.2344, 0.17527},
             {0.2266, 0.17507},
             {0.1563, 0.16077},
             {0.0938, 0.12317},
             {0.0781, 0.1089},
             {0.0703, 0.10091},
             {0.0625, 0.09233}},
            -0.21405,
            0.6172,
            0.7344,
            computed};
}

Reference reynolds400() {
    return {400.0,
            lineOf(uPlaces, {-0.0818, -0.0926, -0.1033, -0.1461, -0.2438, -0.3287, -0.1715, -0.1151, 0.0210,
                             0.1626, 0.2920, 0.5618, 0.6202, 0.6868, 0.7603}),
            lineOf(vPlaces, {0.1851, 0.1988, 0.2110, 0.2317, 0.2835, 0.3038, 0.3035, 0.0520, -0.3856, -0.4538,
                             -0.3898, -0.2347, -0.1981, -0.1614, -0.1254}),
            {{0.9766, 0.75837},
             {0.9688, 0.68439},
             {0.9609, 0.61756},
             {0.9531, 0.55892},
             {0.8516, 0.29093},
             {0.7344, 0.16256},
             {0.6172, 0.02135},
             {0.5, -0.11477},
             {0.4531, -0.17119},
             {0.2813, -0.32726},
             {0.1719, -0.24299},
             {0.1016, -0.14612},
             {0.0703, -0.10338},
             {0.0625, -0.09266},
             {0.0547, -0.08186}},
            {{0.9688, -0.12146},
             {0.9609, -0.15663},
             {0.9531, -0.19254},
             {0.9453, -0.22847},
             {0.8594, -0.44993},
             {0.8047, -0.38598},
             {0.5, 0.05186},
             {0.2344, 0.30174},
             {0.2266, 0.30203},
             {0.1563, 0.28124},
             {0.0938, 0.22965},
             {0.0781, 0.2092},
             {0.0703, 0.19713},
             {0.0625, 0.1836}},
            -0.32872,
            0.5547,
            0.6055,
            computed};
}

Reference reynolds1000() {
    return {1000.0,
            lineOf(uPlaces,
                   {-0.1812881, -0.2023300, -0.2228955, -0.3004561, -0.3885691, -0.2803696, -0.1081999,
                    -0.0620561, 0.0570178, 0.1886747, 0.3372212, 0.4723329, 0.5169277, 0.5808359, 0.6644227}),
            lineOf(vPlaces,
                   {0.2807056, 0.2962703, 0.3099097, 0.3330442, 0.3769189, 0.3339924, 0.3253592, 0.0257995,
                    -0.3202137, -0.4264545, -0.5264392, -0.4103754, -0.3553213, -0.2936869, -0.2279225}),
            {{0.9766, 0.65928},
             {0.9688, 0.57492},
             {0.9609, 0.51117},
             {0.9531, 0.46604},
             {0.8516, 0.33304},
             {0.7344, 0.18719},
             {0.6172, 0.05702},
             {0.5, -0.0608},
             {0.4531, -0.10648},
             {0.2813, -0.27805},
             {0.1719, -0.38289},
             {0.1016, -0.2973},
             {0.0703, -0.2222},
             {0.0625, -0.20196},
             {0.0547, -0.18109}},
            {{0.9688, -0.21388},
             {0.9609, -0.27669},
             {0.9531, -0.33714},
             {0.9453, -0.39188},
             {0.9063, -0.5155},
             {0.8594, -0.42665},
             {0.8047, -0.31966},
             {0.5, 0.02526},
             {0.2344, 0.32235},
             {0.2266, 0.33075},
             {0.1563, 0.37095},
             {0.0938, 0.32627},
             {0.0781, 0.30353},
             {0.0703, 0.29012},
             {0.0625, 0.27485}},
            -0.3885698,
            0.5308,
            0.5652,
            "Accurate centre lines: O. Botella, R. Peyret, Computers & Fluids 27 (1998) 421-433, tables 9 "
            "and 10."};
}

PlaneSetUp cavitySetUp(const Context& context, double Re, double Ma, int n, bool cut) {
    PlaneSetUp s;
    s.CFL = cut ? 0.2 : 0.4;
    s.Ma = Ma;
    s.ReOrRa = Re;
    s.zones = {{}, {}, {}, support::movingWall(1.0, 0.0)};
    // Per step, so that the change per unit of time is the same on every mesh.
    s.tolerance = (context.quick() ? 1e-6 : 1e-7) * Ma * 128 / n;
    s.interval = 2000;
    s.maxSteps = 500000;
    return s;
}

struct Figures {
    double deviation = 0.0;     ///< largest, over the listed points
    double meanDeviation = 0.0; ///< root mean square
    double uMin = 0.0;
    double centreX = 0.5, centreY = 0.5;
};

/// The point where the velocity vanishes, by Newton's method.
void findVortexCentre(Figures& figures, const Reference& reference) {
    double x = reference.centreX, y = reference.centreY;
    for (int i = 0; i < 20; ++i) {
        const FitAt u = uAt(x, y), v = vAt(x, y);
        const double det = u.dx * v.dy - u.dy * v.dx;
        x -= (u.value * v.dy - u.dy * v.value) / det;
        y -= (u.dx * v.value - u.value * v.dx) / det;
    }
    figures.centreX = x;
    figures.centreY = y;
}

Figures measure(const Reference& reference) {
    Figures figures;
    double squares = 0.0;
    const auto compare = [&](double ours, double theirs) {
        const double difference = std::isfinite(ours) ? std::abs(ours - theirs) : 9.0;
        figures.deviation = std::max(figures.deviation, difference);
        squares += difference * difference;
    };
    for (const auto& [y, u] : reference.u)
        compare(uAt(0.5, y).value, u);
    for (const auto& [x, v] : reference.v)
        compare(vAt(x, 0.5).value, v);
    figures.meanDeviation = std::sqrt(squares / static_cast<double>(reference.u.size() + reference.v.size()));
    figures.uMin = -maximumOf([](double y) { return -uAt(0.5, y).value; }, 0.02, 0.9, 50).value;
    findVortexCentre(figures, reference);
    return figures;
}

QStringList figureHeader() {
    return {"Mesh",  "Ma",    "largest deviation", "order",        "rms deviation",
            "order", "u_min", "error of u_min",    "vortex centre"};
}

QStringList figureRow(const Run& run, const Figures& f, const Reference& reference, const QString& order,
                      const QString& meanOrder) {
    return {run.mesh,
            number(run.Ma),
            number(f.deviation, 3),
            order,
            number(f.meanDeviation, 3),
            meanOrder,
            QString::number(f.uMin, 'f', 5),
            percent(f.uMin / reference.uMin - 1.0),
            QString("(%1, %2)").arg(f.centreX, 0, 'f', 4).arg(f.centreY, 0, 'f', 4)};
}

void addCentreLines(Result& result, const Reference& reference) {
    Series u{"Fluvane", {}, false}, v{"Fluvane", {}, false};
    for (int i = 1; i < 100; ++i) {
        u.points.emplace_back(i / 100.0, uAt(0.5, i / 100.0).value);
        v.points.emplace_back(i / 100.0, vAt(i / 100.0, 0.5).value);
    }
    const QString accurate = reference.Re > 999.0 ? "Botella & Peyret" : "accurate values";
    result.plots.push_back({"u",
                            "u along x = 0.5 on the finest mesh.",
                            "y",
                            "u / lid speed",
                            {u, {accurate, reference.u, true}, {"Ghia et al.", reference.ghiaU, true}}});
    result.plots.push_back({"v",
                            "v along y = 0.5 on the finest mesh.",
                            "x",
                            "v / lid speed",
                            {v, {accurate, reference.v, true}, {"Ghia et al.", reference.ghiaV, true}}});
}

void addSources(Result& result, const Reference& reference) {
    result.sources << reference.source << ghia;
}

Result squareMeshes(const Context& context, const Reference& reference, const std::vector<int>& sizes,
                    double Ma, double band) {
    Result result;
    addSources(result, reference);
    Table table{
        QString("Deviation from the accurate centre lines in units of the lid speed; accurate u_min %1, "
                "published vortex centre (%2, %3).")
            .arg(reference.uMin)
            .arg(reference.centreX)
            .arg(reference.centreY),
        figureHeader(),
        {}};
    Figures before, now;
    int sizeBefore = 0;
    double massShare = 0.0;
    for (const int n : sizes) {
        const PlaneMesh plane = squares(n);
        const PlaneSetUp setUp = cavitySetUp(context, reference.Re, Ma, n, false);
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, setUp);
        result.runs.push_back(runSteady(context, QString("squares_%1").arg(n), plane, setUp));
        massShare = std::abs(totalMass() - 1.0) / result.runs.back().steps;
        now = measure(reference);
        QString order, meanOrder;
        if (sizeBefore > 0) {
            const double refinement = double(n) / sizeBefore;
            order = number(observedOrder(before.deviation, now.deviation, refinement), 3);
            meanOrder = number(observedOrder(before.meanDeviation, now.meanDeviation, refinement), 3);
        }
        table.rows.push_back(figureRow(result.runs.back(), now, reference, order, meanOrder));
        before = now;
        sizeBefore = n;
    }
    result.tables.push_back(table);
    addCentreLines(result, reference);
    result.pictures.push_back({"flow",
                               "Speed and streamlines on the finest mesh.",
                               result.runs.back().resultFile,
                               {"--show", "speed", "--streamlines"}});
    result.bands.push_back({"largest deviation on the finest mesh", now.deviation, 0.0, band});
    result.bands.push_back({"change of mass a step", massShare, 0.0, 1e-15});
    return result;
}

Result cavity100(const Context& context) {
    return context.quick() ? squareMeshes(context, reynolds100(), {32, 48}, 0.1, 0.02)
                           : squareMeshes(context, reynolds100(), {32, 64, 128}, 0.1, 0.005);
}

Result cavity400(const Context& context) {
    return squareMeshes(context, reynolds400(), {48, 64, 128}, 0.2, 0.005);
}

Result cavity1000(const Context& context) {
    return squareMeshes(context, reynolds1000(), {48, 64, 96}, 0.2, 0.02);
}

Result cavity1000Fine(const Context& context) {
    return squareMeshes(context, reynolds1000(), {128}, 0.2, 0.005);
}

/// What Mach number, time step and wall-clustered cells do to the error at Re 1000.
Result cavityChoices(const Context& context) {
    constexpr int n = 48;
    const Reference reference = reynolds1000();
    Result result;
    addSources(result, reference);
    Table table{"Deviation from the accurate centre lines at Re 1000, one choice changed at a time.",
                {"Choice", "Mesh", "largest deviation", "rms deviation", "error of u_min"},
                {}};
    const auto run = [&](const QString& words, const PlaneMesh& plane, double Ma, double CFL) {
        PlaneSetUp s = cavitySetUp(context, reference.Re, Ma, n, false);
        s.tolerance *= CFL / s.CFL;
        s.CFL = CFL;
        s.maxSteps = 150000; // more than those need that settle
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, s);
        result.runs.push_back(runSteady(context, QString("run_%1").arg(result.runs.size()), plane, s));
        const Figures f = measure(reference);
        table.rows.push_back({words, plane.words, number(f.deviation, 3), number(f.meanDeviation, 3),
                              percent(f.uMin / reference.uMin - 1.0)});
        return f.deviation;
    };
    const double asElsewhere = run("as in the other cases", squares(n), 0.2, 0.4);
    run("Ma 0.1", squares(n), 0.1, 0.4);
    run("Ma 0.3", squares(n), 0.3, 0.4);
    run("CFL 0.45", squares(n), 0.2, 0.45);
    run("CFL 0.25", squares(n), 0.2, 0.25);
    const double clustered = run("clustered", wallClusteredRectangles(n, 1.2), 0.2, 0.4);
    result.tables.push_back(table);
    result.bands.push_back(
        {"deviation on clustered cells over that on squares", clustered / asElsewhere, 0.4, 0.95});
    return result;
}

/// The other kinds of mesh at Re 100.
Result cavityMeshes(const Context& context) {
    const Reference reference = reynolds100();
    Result result;
    addSources(result, reference);
    Table table{"Deviation from the accurate centre lines in units of the lid speed.", figureHeader(), {}};
    const std::vector<int> sizes = context.quick() ? std::vector{16, 24} : std::vector{16, 32, 64};
    for (const bool cut : {false, true}) {
        Figures before, now;
        int sizeBefore = 0;
        for (const int n : sizes) {
            const PlaneMesh plane = cut ? triangles(n) : wallClusteredRectangles(n, 1.2);
            const PlaneSetUp setUp = cavitySetUp(context, reference.Re, 0.2, n, cut);
            if (n == sizes.front())
                result.setUp += describe(plane, setUp);
            result.runs.push_back(
                runSteady(context, QString(cut ? "triangles_%1" : "clustered_%1").arg(n), plane, setUp));
            now = measure(reference);
            const double refinement = sizeBefore > 0 ? double(n) / sizeBefore : 0.0;
            const auto order = [&](double a, double b) {
                return sizeBefore > 0 ? number(observedOrder(a, b, refinement), 3) : QString();
            };
            table.rows.push_back(figureRow(result.runs.back(), now, reference,
                                           order(before.deviation, now.deviation),
                                           order(before.meanDeviation, now.meanDeviation)));
            before = now;
            sizeBefore = n;
        }
        result.bands.push_back(
            {cut ? "largest deviation, triangles" : "largest deviation, clustered rectangles", now.deviation,
             0.0, context.quick() ? 0.05 : 0.01});
        result.pictures.push_back({cut ? "triangles" : "clustered",
                                   "Speed on the finest mesh.",
                                   result.runs.back().resultFile,
                                   {"--show", "speed", "--mesh"}});
    }
    result.tables.push_back(table);
    return result;
}

const Registered at100({30, "cavity-100", "Lid-driven cavity, Re 100", cavity100, 250});
const Registered at400({31, "cavity-400", "Lid-driven cavity, Re 400", cavity400, 300, false});
const Registered at1000({32, "cavity-1000", "Lid-driven cavity, Re 1000", cavity1000, 240, false});
const Registered at1000Fine({33, "cavity-1000-fine", "Lid-driven cavity, Re 1000, 128 x 128", cavity1000Fine,
                             400, false});
const Registered choices({35, "cavity-choices",
                          "Lid-driven cavity, Re 1000: Mach number, time step and clustered cells",
                          cavityChoices, 200, false});
const Registered otherMeshes({34, "cavity-meshes", "Lid-driven cavity, Re 100, other meshes", cavityMeshes,
                              250});

} // namespace

} // namespace fluvane::validation
