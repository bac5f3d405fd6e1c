// Melting and freezing against exact fronts, their conservation of heat, and melting with convection.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/enthalpy.h"
#include "solver2d/equilibrium.h"
#include "solver2d/time_step.h"
#include "support/case_runner.h"
#include "support/melting.h"
#include "support/mesh_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>
#include <vector>

using namespace fluvane;
using support::fourierNumber;
using support::meanLiquidFraction;
using support::onePhaseLambda;
using support::runTo;
using support::twoPhaseLambda;

namespace {

constexpr int considered = support::phaseConsidered;
constexpr int lftf = support::phaseLftf;

double totalEnthalpy() {
    double total = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        total += c.area * c.H;
    return total;
}

class Melting : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
    }
    void TearDown() override { support::resetProcessState(); }

    /// A strip of n by `rows` square cells, 1 long, with the diffusivity below a fifth of a cell: heat
    /// carried further than a cell between two collisions melts what lies beyond the front. The wall at x = 0
    /// has a temperature, the others are adiabatic.
    static void strip(int n, int rows, double alpha, int variant, double Ste, double Ts, double wall) {
        const double height = static_cast<double>(rows) / n;
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::rectangles(n, rows, 1.0, height), 4, support::sidesOfBox(1.0, height));
        support::useLattice(0.4);
        support::confirmMelting({.PrOrAlpha = alpha, .variant = variant, .Ste = Ste, .meltingPoint = Ts});
        support::assignZone(0, support::wallAt(wall));
        for (const int zone : {1, 2, 3})
            support::assignZone(zone, {});
    }

    /// A square of n by n cells with a hot wall at x = 0, full of solid at the melting point.
    static void square(int n, double Pr, double Ra, int variant, double Ste) {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
        support::useLattice(0.4);
        support::confirmMelting({.PrOrAlpha = Pr, .Ra = Ra, .flowKind = 1, .variant = variant, .Ste = Ste});
        support::assignZone(0, support::wallAt(1.0));
        for (const int zone : {1, 2, 3})
            support::assignZone(zone, {});
    }

    static double frontError(double lambda, std::pair<double, double> shares, bool freezing) {
        const std::vector<support::FrontMoment> moments = support::followFront(lambda, shares, freezing);
        const double largest = support::largestFrontError(moments);
        std::printf("share %.4f behind the front after %d steps, tauG/dt %.2f: error %.3e\n",
                    moments.back().measured, moments.back().steps, caseSettings.tauG / caseSettings.dt,
                    largest);
        return largest;
    }

    static double meltingError(int n, double alpha, int variant, double Ste) {
        strip(n, n / 5, alpha, variant, Ste, 0.0, 1.0);
        std::printf("melting, Ste %g, variant %d, %d cells: ", Ste, variant, n);
        return frontError(onePhaseLambda(Ste), {0.4, 0.5}, false);
    }

    static double freezingError(int n, int variant) {
        constexpr double Ste = 2.0, meltingPoint = -0.2, wall = -1.0;
        strip(n, n / 5, 0.001, variant, Ste, meltingPoint, wall);
        std::printf("freezing, variant %d, %d cells: ", variant, n);
        return frontError(twoPhaseLambda(meltingPoint - wall, -meltingPoint, 1.0 / Ste), {0.2, 0.35}, true);
    }

    /// A tilted front across the square: liquid above the melting point, mush, and solid below it.
    static void setPartlyMoltenState() {
        for (CellRecord& c : mesh.cells2D) {
            const double warmth = std::sin(3.0 * c.xc) - c.yc;
            c.H = std::abs(warmth) < 0.1 ? 0.5 * caseSettings.Hliquidus : enthalpyOf(warmth);
            c.T = temperatureOf(c.H);
            for (int k = 0; k < velocitySet.velocityCount; ++k)
                c.gTilde[k] = geqH(k, c.H, c.T, 0.0, 0.0);
        }
    }

    struct Moment {
        double fl;
        double Nu;
        double bottom; ///< liquid fraction of the lowest row
        double top;    ///< and of the highest
    };

    static Moment momentOfSquare(int n) {
        Moment m{meanLiquidFraction(), support::leftWallNusselt(n, 1.0), 0.0, 0.0};
        for (int i = 0; i < n; ++i) {
            m.bottom += liquidFraction(mesh.cells2D[static_cast<std::size_t>(i)].H) / n;
            m.top += liquidFraction(mesh.cells2D[static_cast<std::size_t>(n * (n - 1) + i)].H) / n;
        }
        return m;
    }

    /// Moments at Ste Fo = 0.01, 0.02, ... 0.12.
    static std::vector<Moment> meltSquare(int n, int variant) {
        square(n, 0.02, 2.5e4, variant, squareSte);
        std::vector<Moment> moments;
        int steps = 0;
        for (int i = 1; i <= 12; ++i) {
            steps = runTo(0.01 * i / squareSte, steps);
            moments.push_back(momentOfSquare(n));
            const Moment& m = moments.back();
            if (i == 1 || i % 3 == 0)
                std::printf("square %d x %d, variant %d, Fo %.3f: fl %.4f, Nu %.3f, bottom %.3f, top %.3f\n",
                            n, n, variant, fourierNumber(steps), m.fl, m.Nu, m.bottom, m.top);
        }
        return moments;
    }

    static constexpr double squareSte = 0.1;
};

} // namespace

TEST_F(Melting, LambdaOfTheOnePhaseFrontIsThatOfTheTables) {
    EXPECT_NEAR(onePhaseLambda(0.1), 0.2200162727, 1e-9);
    EXPECT_NEAR(onePhaseLambda(1.0), 0.6200626333, 1e-9);
    // Freezing a liquid at the melting point is the same problem the other way round.
    EXPECT_NEAR(twoPhaseLambda(1.0, 0.0, 1.0), 0.6200626333, 1e-9);
}

TEST_F(Melting, FrontFromAHotWallFollowsTheExactOneAtSteOne) {
    for (const int variant : {considered, lftf}) {
        const double coarse = meltingError(25, 0.001, variant, 1.0);
        const double middle = meltingError(50, 0.001, variant, 1.0);
        const double fine = meltingError(75, 0.001, variant, 1.0);
        EXPECT_LT(middle, 0.6 * coarse);
        EXPECT_LT(fine, 0.9 * middle);
        EXPECT_LT(fine, 0.01);
    }
}

TEST_F(Melting, FrontFromAHotWallFollowsTheExactOneAtSteOneTenth) {
    for (const int variant : {considered, lftf}) {
        const double coarse = meltingError(20, 0.002, variant, 0.1);
        const double fine = meltingError(60, 0.002, variant, 0.1);
        EXPECT_LT(fine, 0.7 * coarse);
        EXPECT_LT(fine, 0.01);
    }
}

TEST_F(Melting, LiquidFreezesFromAColdWallLikeTheExactFront) {
    for (const int variant : {considered, lftf}) {
        const double coarse = freezingError(25, variant);
        const double fine = freezingError(75, variant);
        EXPECT_LT(fine, 0.5 * coarse);
        EXPECT_LT(fine, 0.007);
    }
}

TEST_F(Melting, AdiabaticSquareKeepsItsEnthalpyToRounding) {
    for (const int variant : {considered, lftf}) {
        square(24, 1.0, 1e4, variant, 1.0);
        support::assignZone(0, {});
        setPartlyMoltenState();
        const double before = totalEnthalpy(), liquidBefore = meanLiquidFraction();
        ASSERT_GT(liquidBefore, 0.2);
        ASSERT_LT(liquidBefore, 0.8);
        double largest = 0.0, speed = 0.0;
        for (int i = 0; i < 10; ++i) {
            for (int n = 0; n < 100; ++n)
                step2D();
            largest = std::max(largest, std::abs(totalEnthalpy() / before - 1.0));
        }
        for (const CellRecord& c : mesh.cells2D)
            speed = std::max(speed, std::hypot(c.u, c.v));
        std::printf("adiabatic square, variant %d: enthalpy %.6f changes by %.1e, fl %.4f -> %.4f, "
                    "largest speed %.3f U0\n",
                    variant, before, largest, liquidBefore, meanLiquidFraction(), speed / caseSettings.U0);
        EXPECT_LT(largest, 1e-12);
        EXPECT_GT(speed, 0.01 * caseSettings.U0) << "the flow must have carried enthalpy about";
        EXPECT_GT(std::abs(meanLiquidFraction() - liquidBefore), 1e-3)
            << "something must have frozen or melted";
    }
}

TEST_F(Melting, SquareHeatedFromTheSideMeltsByConductionAtFirstAndThenFasterAtTheTop) {
    const std::vector<Moment> coarse = meltSquare(20, considered), fine = meltSquare(32, considered);
    const double lambda = onePhaseLambda(squareSte);
    const auto conductionNu = [&](int i) {
        return 1.0 / (std::erf(lambda) * std::sqrt(std::numbers::pi * 0.01 * i / squareSte));
    };
    // The Nusselt number swings as the front crosses its cells.
    double ratio = 0.0;
    for (int i = 1; i <= 4; ++i)
        ratio += fine[static_cast<std::size_t>(i - 1)].Nu / conductionNu(i) / 4.0;
    const Moment& last = fine.back();
    const double conductionFl = 2.0 * lambda * std::sqrt(0.12 / squareSte);
    const double apart = std::abs(coarse.back().fl / last.fl - 1.0);
    std::printf("square: early Nu / conduction %.4f, last fl %.4f against %.4f by conduction, "
                "Nu %.3f against %.3f, 20 and 32 cells %.2e apart in fl\n",
                ratio, last.fl, conductionFl, last.Nu, conductionNu(12), apart);
    EXPECT_NEAR(ratio, 1.0, 0.04);
    for (std::size_t i = 1; i < fine.size(); ++i)
        EXPECT_GT(fine[i].fl, fine[i - 1].fl);
    EXPECT_GT(last.fl, 1.03 * conductionFl);
    EXPECT_GT(last.Nu, 1.1 * conductionNu(12));
    // Nu = 0.29 Ra^0.27 Pr^0.18 of the developed regime at low Pr (Gobin and Benard, J. Heat Transfer 114
    // (1992) 521); conduction still adds to it here.
    const double correlation = 0.29 * std::pow(2.5e4, 0.27) * std::pow(0.02, 0.18);
    std::printf("square: Nu %.3f, developed convection %.3f\n", last.Nu, correlation);
    EXPECT_NEAR(last.Nu, correlation, 0.2 * correlation);
    EXPECT_GT(last.top, last.bottom + 0.1);
    EXPECT_LT(fine.front().top - fine.front().bottom, 0.01);
    EXPECT_LT(apart, 0.02);
}
