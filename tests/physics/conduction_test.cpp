// Conduction against exact profiles.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/result_file.h"
#include "setup/initial_fields.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

using namespace fluvane;

namespace {

class Conduction : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
    }
    void TearDown() override { support::resetProcessState(); }

    /// The result file's error line on a ring of nr by nt cells, T = 2 inside and 1 outside.
    static double annulusError(int nr, int nt, bool triangles, double alpha) {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::ring(nr, nt, 0.9, 3.0, triangles), 2,
                          [](double x, double y) { return std::hypot(x, y) < 2.0 ? 0 : 1; });
        support::useLattice(triangles ? 0.2 : 0.4);
        initialiseFields(1.0, 0.1, alpha, 0.0, 1.0, 2, 1, 0, 0, 0);
        support::assignZone(0, support::wallAt(2.0));
        support::assignZone(1, support::wallAt(1.0));
        const int steps = support::runUntilSteady(1e-9, 500, 400000);
        EXPECT_GT(steps, 0);
        EXPECT_LT(steps, 400000) << "not settled";
        const double error = exactSolutionError();
        std::printf("annulus %s %d x %d: error %.4e after %d steps, tauG/dt %.2f\n",
                    triangles ? "triangles" : "quads", nr, nt, error, steps,
                    caseSettings.tauG / caseSettings.dt);
        return error;
    }

    /// A square slab, T = 0 at x = 0; the wall x = 1 as given. Square, since adiabatic walls slow conduction
    /// along them by the order of the relaxation time, which a low strip would show everywhere.
    static void slab(int n, double alpha, double scale, int scaleKind, const support::Zone& right) {
        support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
        support::useLattice(0.4);
        initialiseFields(1.0, 0.1, alpha, 0.0, scale, 2, 1, scaleKind, 0, 0);
        support::assignZone(0, support::wallAt(0.0));
        support::assignZone(1, right);
        support::assignZone(2, {});
        support::assignZone(3, {});
    }

    /// Largest deviation from the profile up to x = limit, relative to the profile's largest value.
    static double slabError(const std::function<double(double)>& exact, double limit = 1.0) {
        double error = 0.0, largest = 0.0;
        for (const CellRecord& c : mesh.cells2D) {
            if (c.xc > limit)
                continue;
            error = std::max(error, std::abs(c.T - exact(c.xc)));
            largest = std::max(largest, std::abs(exact(c.xc)));
        }
        return error / largest;
    }
};

} // namespace

// Twice as many cells around as across: with more of them the errors around and across have opposite signs
// and all but cancel on some meshes, which would show an order that is not there.
TEST_F(Conduction, AnnulusErrorFallsNearlyAtSecondOrderOnQuadrilaterals) {
    const double coarse = annulusError(8, 16, false, 0.003);
    const double middle = annulusError(16, 32, false, 0.003);
    const double fine = annulusError(24, 48, false, 0.003);
    EXPECT_GT(std::log(coarse / middle) / std::log(2.0), 1.7);
    EXPECT_GT(std::log(middle / fine) / std::log(1.5), 1.7);
    EXPECT_LT(fine, 3e-3);
}

TEST_F(Conduction, AnnulusErrorFallsNearlyAtSecondOrderOnTriangles) {
    const double coarse = annulusError(6, 18, true, 0.003);
    const double fine = annulusError(12, 36, true, 0.003);
    EXPECT_GT(std::log(coarse / fine) / std::log(2.0), 1.7);
    EXPECT_LT(fine, 3.5e-3);
}

TEST_F(Conduction, SlabWithConstantFluxHasItsLinearProfile) {
    const int n = 24;
    const double alpha = 0.003, q = 0.02;
    slab(n, alpha, q, 1, support::wallWithFlux(q));
    const int steps = support::runUntilSteady(1e-8, 1000, 100000);
    EXPECT_GT(steps, 0);
    EXPECT_LT(steps, 100000) << "not settled";
    const auto exact = [&](double x) { return q * x / alpha; };
    // Deliberate: the wall counts tangential velocities twice, which only the two cells next to it feel.
    const double inside = slabError(exact, 1.0 - 2.0 / n), whole = slabError(exact);
    std::printf("flux slab: error %.3e, with the wall's cells %.3e, %d steps, tauG/dt %.2f\n", inside, whole,
                steps, caseSettings.tauG / caseSettings.dt);
    EXPECT_LT(inside, 4e-3);
    EXPECT_LT(whole, 1e-2);
}

TEST_F(Conduction, SlabWithAHeatSourceHasTheParabolaOfTheSourceThatIsEffective) {
    const double alpha = 0.003, source = 0.02;
    slab(24, alpha, source, 2, support::wallAt(0.0));
    ASSERT_EQ(caseSettings.heatSource, source);
    const int steps = support::runUntilSteady(1e-8, 1000, 100000);
    EXPECT_GT(steps, 0);
    EXPECT_LT(steps, 100000) << "not settled";
    const double effective = source * 2.0 * caseSettings.tauG / (2.0 * caseSettings.tauG + caseSettings.dt);
    const double error = slabError([&](double x) { return effective * x * (1.0 - x) / (2.0 * alpha); });
    std::printf("source slab: error %.3e after %d steps, effective share %.4f\n", error, steps,
                effective / source);
    EXPECT_LT(error, 5e-3);
    EXPECT_LT(effective / source, 0.9) << "the typed source would be told apart";
}
