// Forced and mixed convection against published Nusselt numbers.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"
#include "profile_zones.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

constexpr double prandtl = 0.71;

struct Lid {
    QString words;
    bool mixed; ///< Ra instead of Re: Gr = Re^2
    double number;
    double published;
    double accurate; ///< extrapolated finite differences
};

/// Hot moving lid, cold floor, adiabatic sides.
PlaneSetUp lidSetUp(const Lid& lid, int n) {
    PlaneSetUp s;
    s.flowKind = lid.mixed ? 1 : 0;
    s.heat = true;
    s.Pr = prandtl;
    s.ReOrRa = lid.number;
    support::Zone top = support::movingWall(1.0, 0.0);
    top.thermalKind = 1;
    top.value = 0.5;
    s.zones = {{}, {}, support::wallAt(-0.5), top};
    s.tolerance = 1e-7 * 128 / n;
    s.interval = 1000;
    s.maxSteps = 300000;
    return s;
}

/// Mean of dT/dy over a horizontal wall.
double meanSlope(double y, int n) {
    double mean = 0.0;
    for (int i = 0; i < n; ++i)
        mean += temperatureAt((i + 0.5) / n, y).dy / n;
    return mean;
}

Result heatedLid(const Context& context) {
    Result result;
    result.sources
        << "R. Iwatsu, J. M. Hyun, K. Kuwahara, Int. J. Heat Mass Transfer 36 (1993) 1601-1608 (its table of "
           "mean Nusselt numbers; Pr 0.71, the lid hot, Gr 100 for the first two rows)."
        << "Accurate values: second-order differences for stream function, vorticity and temperature, "
           "Newton's method, 49 and 97 points a side, Richardson-extrapolated. They lie 5 to 7 % above the "
           "published ones.";
    Table table{
        "Mean Nusselt number of lid and floor by the temperature slope, and by the scheme's own fluxes.",
        {"Case", "Mesh", "Nu lid", "Nu floor", "Nu by fluxes", "published", "accurate", "error of Nu floor",
         "change to the mesh before"},
        {}};
    std::vector<Lid> lids{{"Re 100, no buoyancy", false, 100.0, 1.94, 2.051},
                          {"Re 100, Gr 10 000", true, 1e4 * prandtl, 1.34, 1.400}};
    if (!context.quick())
        lids.insert(lids.begin() + 1, {"Re 400, no buoyancy", false, 400.0, 3.84, 4.10});
    for (const Lid& lid : lids) {
        double before = 0.0;
        for (const int n : context.quick() ? std::vector{16, 24} : std::vector{16, 32, 64}) {
            if (lid.number > 399.0 && !lid.mixed && n == 16)
                continue;
            const PlaneMesh plane = squares(n);
            const PlaneSetUp setUp = lidSetUp(lid, n);
            if (before == 0.0)
                result.setUp << lid.words + ": " + describe(plane, setUp).mid(1).join(". ");
            const QString name =
                QString("%1%2_squares_%3").arg(lid.mixed ? "Ra" : "Re").arg(lid.number).arg(n);
            result.runs.push_back(runSteady(context, name, plane, setUp));
            const double top = meanSlope(1.0, n), floor = meanSlope(0.0, n);
            table.rows.push_back({lid.words, plane.words, number(top), number(floor),
                                  number(-heatOutThrough(3) / caseSettings.alpha), number(lid.published),
                                  number(lid.accurate), percent(floor / lid.accurate - 1.0),
                                  before > 0.0 ? percent(floor / before - 1.0) : QString()});
            before = floor;
        }
        const double band = context.quick() ? 0.1 : 0.01;
        result.bands.push_back({lid.words + ", error of Nu", before / lid.accurate - 1.0, -band, band});
    }
    result.tables.push_back(table);
    result.pictures.push_back({"field",
                               "Temperature and streamlines of the last case on the finest mesh.",
                               result.runs.back().resultFile,
                               {"--show", "T", "--streamlines"}});
    return result;
}

/// 2 H q_w / (alpha (T_wall - T_bulk)) at x, both walls at T_wall.
double channelNusselt(double x, double wall, int n) {
    double flow = 0.0, heat = 0.0;
    for (int j = 0; j < 2 * n; ++j) {
        const double y = (j + 0.5) / (2 * n), u = uAt(x, y).value;
        flow += u;
        heat += u * temperatureAt(x, y).value;
    }
    const double slope = (temperatureAt(x, 1.0).dy - temperatureAt(x, 0.0).dy) / 2.0;
    return 2.0 * slope / (wall - heat / flow);
}

Result heatedChannel(const Context& context) {
    constexpr double length = 6.0, wall = 0.5, place = 4.0;
    Result result;
    result.sources
        << "Fully developed laminar flow between two parallel walls at one temperature: Nu = 7.541 on the "
           "hydraulic diameter. R. K. Shah, A. L. London, Laminar Flow Forced Convection in Ducts (1978).";
    Table table{"Nusselt number at x = 4 (and 3), x / (2 H Pe) = 0.07 and 0.053, where the published local "
                "number is within "
                "0.2 % of its limit.",
                {"Mesh", "Nu at x = 4", "Nu at x = 3", "error at x = 4", "order"},
                {}};
    double before = 0.0, error = 0.0;
    for (const int n : context.quick() ? std::vector{8, 16} : std::vector{8, 16, 32}) {
        const PlaneMesh plane = boxMesh(QString("%1 x %2 squares").arg(6 * n).arg(n),
                                        support::rectangles(6 * n, n, length, 1.0), length, 1.0);
        PlaneSetUp s;
        s.heat = true;
        s.Pr = prandtl;
        s.ReOrRa = 20.0;
        support::Zone inlet = support::movingWall(1.0, 0.0);
        inlet.thermalKind = 1;
        inlet.value = -0.5;
        s.zones = {inlet, support::outflowZone(), support::wallAt(wall), support::wallAt(wall)};
        s.tolerance = 1e-8 * 32 / n;
        s.interval = 1000;
        s.maxSteps = 60000;
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, s);
        result.runs.push_back(runSteady(context, QString("squares_%1").arg(n), plane, s));
        const double nusselt = channelNusselt(place, wall, n);
        error = nusselt / 7.541 - 1.0;
        table.rows.push_back({plane.words, number(nusselt), number(channelNusselt(3.0, wall, n)),
                              percent(error),
                              before != 0.0 ? number(observedOrder(before, error, 2.0), 3) : QString()});
        before = error;
    }
    result.tables.push_back(table);
    result.remarks
        << "An adiabatic outflow does not carry all of the heat out that arrives: what its faces let through "
           "is "
           "recovered with the share (dt/2) / (2 tauG + dt/2). The last cells before the outlet are too far "
           "from the truth, which convection keeps from reaching upstream; read nothing off there.";
    const double band = context.quick() ? 0.08 : 0.02;
    result.bands.push_back({"error of Nu at x = 4", error, -band, band});
    result.pictures.push_back(
        {"field", "Temperature on the finest mesh.", result.runs.back().resultFile, {"--show", "T"}});
    return result;
}

const Registered lidCase({50, "heated-lid", "Forced and mixed convection under a hot moving lid", heatedLid,
                          150});
const Registered channelCase({51, "heated-channel", "Forced convection in a channel", heatedChannel, 100});

} // namespace

} // namespace fluvane::validation
