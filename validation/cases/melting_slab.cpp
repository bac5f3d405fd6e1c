// Melting and freezing in one dimension against the exact front.
#include "case.h"
#include "dialogs/case_settings.h"
#include "melting_run.h"

#include <cmath>

namespace fluvane::validation {

namespace {

using support::FrontMoment;

/// A strip 1 long with the wall x = 0 held at `wall`; the others let no heat through. It starts at T = 0.
struct Slab {
    QString words;
    QString name; ///< of the runs
    double Ste, alpha, meltingPoint, wall;
    std::pair<double, double> shares; ///< of the slab behind the front, between which it is looked at
    std::vector<int> sizes, quickSizes;
    double band, quickBand; ///< of the error on the finest mesh
    bool ratioKept = false; ///< `alpha` is that of the finest mesh, elsewhere such that tauG / dt is the same

    bool freezing() const { return wall < meltingPoint; }
    double alphaOn(int n) const { return ratioKept ? alpha * sizes.back() / n : alpha; }
    double lambda() const {
        return freezing() ? support::twoPhaseLambda(meltingPoint - wall, -meltingPoint, 1.0 / Ste)
                          : support::onePhaseLambda(Ste);
    }
};

/// The diffusivities keep tauG / dt between a seventh and six tenths: beyond it heat overtakes the front.
const std::vector<Slab> meltingSlabs = {
    {"melting, Ste 0.1", "ste01", 0.1, 0.0015, 0.0, 1.0, {0.4, 0.5}, {20, 40, 80}, {20}, 0.008, 0.013},
    {"melting, Ste 0.5", "ste05", 0.5, 0.0012, 0.0, 1.0, {0.4, 0.5}, {25, 50, 100}, {25}, 0.008, 0.026},
    {"melting, Ste 1", "ste1", 1.0, 0.001, 0.0, 1.0, {0.4, 0.5}, {25, 50, 100}, {25, 50}, 0.008, 0.012},
    {"melting, Ste 1, equal tauG / dt",
     "ste1_ratio",
     1.0,
     0.001,
     0.0,
     1.0,
     {0.4, 0.5},
     {25, 50, 100},
     {25, 50},
     0.008,
     0.02,
     true}};

const std::vector<Slab> freezingSlabs = {{"freezing, Ste 2",
                                          "freezing",
                                          2.0,
                                          0.001,
                                          -0.2,
                                          -1.0,
                                          {0.2, 0.35},
                                          {25, 50, 100},
                                          {25, 50},
                                          0.008,
                                          0.023}};

PlaneMesh strip(int n) {
    const double height = 0.2;
    return boxMesh(QString("%1 x %2 squares").arg(n).arg(n / 5), support::rectangles(n, n / 5, 1.0, height),
                   1.0, height);
}

MeltingSetUp setUpOf(const Slab& slab, int n, int variant) {
    MeltingSetUp s;
    s.physics.PrOrAlpha = slab.alphaOn(n);
    s.physics.variant = variant;
    s.physics.Ste = slab.Ste;
    s.physics.meltingPoint = slab.meltingPoint;
    s.zones = {support::wallAt(slab.wall), {}, {}, {}};
    return s;
}

Series overTime(const QString& label, const std::vector<FrontMoment>& moments, bool exact) {
    Series series{label, {}, exact};
    for (const FrontMoment& m : moments)
        series.points.emplace_back(m.Fo, exact ? m.exact : m.measured);
    return series;
}

/// One slab with one variant on all meshes: rows, bands, plots' series.
void follow(const Context& context, const Slab& slab, int variant, Result& result) {
    const bool lftf = variant == support::phaseLftf;
    const QString label = QString("%1, \"%2\"").arg(slab.words, lftf ? "LFTF" : "Considered");
    Series errors{label, {}, false};
    std::vector<FrontMoment> moments;
    double before = 0.0;
    int sizeBefore = 0;
    for (const int n : context.quick() ? slab.quickSizes : slab.sizes) {
        const PlaneMesh plane = strip(n);
        const MeltingSetUp setUp = setUpOf(slab, n, variant);
        result.runs.push_back(
            runMelting(context, QString("%1_%2_%3").arg(slab.name, lftf ? "lftf" : "considered").arg(n),
                       plane, setUp, [&] {
                           moments = support::followFront(slab.lambda(), slab.shares, slab.freezing());
                           return moments.back().steps;
                       }));
        if (result.setUp.isEmpty())
            result.setUp = describe(plane, setUp, moments.back().steps);
        const double error = support::largestFrontError(moments);
        const FrontMoment& last = moments.back();
        result.tables.front().rows.push_back(
            {label, plane.words, number(caseSettings.tauG / caseSettings.dt, 2), number(last.measured, 5),
             number(last.exact, 5), percent(last.measured / last.exact - 1.0), percent(error),
             sizeBefore > 0 ? number(observedOrder(before, error, double(n) / sizeBefore), 2) : QString()});
        errors.points.emplace_back(1.0 / n, error);
        before = error;
        sizeBefore = n;
    }
    result.bands.push_back({"error of the front on the finest mesh, " + label, before, 0.0,
                            context.quick() ? slab.quickBand : slab.band});
    result.plots[0].series.push_back(errors);
    if (!lftf) {
        result.plots[1].series.push_back(overTime(slab.words, moments, false));
        result.plots[1].series.push_back(overTime(slab.words + ", exact", moments, true));
    }
}

Result slabs(const Context& context, const std::vector<Slab>& all) {
    Result result;
    result.tables.push_back(
        {"Share of the slab behind the front: at the last moment, and the largest relative "
         "error of eleven moments at equal distances of the front.",
         {"Case", "Mesh", "tauG / dt", "share", "exact", "error", "largest error", "order of the largest"},
         {}});
    result.plots.push_back({"error",
                            "Largest relative error of the front against the cells' side.",
                            "side of a cell",
                            "relative error",
                            {},
                            true,
                            true});
    result.plots.push_back({"front",
                            "The front over time on the finest mesh, \"Considered\".",
                            "Fo",
                            "share behind the front",
                            {}});
    for (const Slab& slab : all)
        for (const int variant : {support::phaseConsidered, support::phaseLftf})
            follow(context, slab, variant, result);
    return result;
}

Result melting(const Context& context) {
    Result result = slabs(context, meltingSlabs);
    result.sources
        << "Exact (Neumann's solution for a solid at its melting point): x = 2 lambda sqrt(alpha t), "
           "lambda exp(lambda^2) erf(lambda) = Ste / sqrt(pi).";
    result.remarks
        << "The front moves on by cells; what is left at the end of a run depends on where in its "
           "cell the front stands, hence the largest error of eleven moments. Nothing flows, so both "
           "variants of the phase change must give the same."
        << "With the diffusivity the same on all meshes tauG / dt grows with the number of cells, and the "
           "error "
           "depends on it too: the orders there are not the spacing's alone. The last case keeps tauG / dt.";
    return result;
}

Result freezing(const Context& context) {
    Result result = slabs(context, freezingSlabs);
    result.sources
        << "Exact (Neumann's two-phase solution): liquid at T = 0 that freezes at -0.2, from a wall "
           "at -1, with equal properties: x = 2 lambda sqrt(alpha t), lambda sqrt(pi) exp(lambda^2) "
           "/ Ste = 0.8 / erf(lambda) - 0.2 / erfc(lambda).";
    result.remarks << "The exact liquid reaches to infinity, the slab to x = 1, where no heat passes; at the "
                      "last moment the wall there has hardly been felt.";
    return result;
}

const Registered meltingCase({70, "melting-slab", "Melting in one dimension", melting, 150});
const Registered freezingCase({71, "freezing-slab", "Freezing in one dimension", freezing, 30});

} // namespace

} // namespace fluvane::validation
