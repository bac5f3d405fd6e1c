// Flow and natural convection against exact and published figures.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "setup/initial_fields.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <utility>

using namespace fluvane;

namespace {

class Flow : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
    }
    void TearDown() override { support::resetProcessState(); }

    static double mass() {
        double total = 0.0;
        for (const CellRecord& c : mesh.cells2D)
            total += c.area * c.rho;
        return total;
    }
    static double uAt(double x, double y) {
        return support::sampleAt(x, y, [](std::size_t i) { return mesh.cells2D[i].u / caseSettings.U0; });
    }
    static double vAt(double x, double y) {
        return support::sampleAt(x, y, [](std::size_t i) { return mesh.cells2D[i].v / caseSettings.U0; });
    }
    static double throughput(double x, int ny) {
        double total = 0.0;
        for (int j = 0; j < ny; ++j) {
            const double y = (j + 0.5) / ny;
            total += support::sampleAt(x, y, [](std::size_t i) {
                return mesh.cells2D[i].rho * mesh.cells2D[i].u / caseSettings.U0;
            });
        }
        return total / ny;
    }
};

// Second-order stream-function/vorticity solution, Richardson-extrapolated from 257^2 and 385^2, good to
// 1e-4.
constexpr std::pair<double, double> uOfY[] = {
    {0.0547, -0.0372}, {0.0625, -0.0420}, {0.0703, -0.0466}, {0.1016, -0.0644}, {0.1719, -0.1017},
    {0.2813, -0.1577}, {0.4531, -0.2140}, {0.5000, -0.2091}, {0.6172, -0.1388}, {0.7344, 0.0041},
    {0.8516, 0.2365},  {0.9531, 0.6912},  {0.9609, 0.7407},  {0.9688, 0.7916},  {0.9766, 0.8435}};
constexpr std::pair<double, double> vOfX[] = {
    {0.0625, 0.0948},  {0.0703, 0.1036},  {0.0781, 0.1118},  {0.0938, 0.1264},  {0.1563, 0.1648},
    {0.2266, 0.1794},  {0.2344, 0.1796},  {0.5000, 0.0575},  {0.8047, -0.2535}, {0.8594, -0.2337},
    {0.9063, -0.1772}, {0.9453, -0.1085}, {0.9531, -0.0933}, {0.9609, -0.0779}, {0.9688, -0.0623}};

} // namespace

TEST_F(Flow, LidDrivenCavityAtRe100FollowsTheAccurateCentreLinesAndKeepsItsMass) {
    support::makeMesh(support::rectangles(64, 64), 4, support::sidesOfBox());
    support::useLattice(0.8);
    initialiseFields(1.0, 0.1, 1.0, 100.0, 1.0, 0, 0, 0, 0, 0);
    for (const int zone : {0, 1, 2})
        support::assignZone(zone, {});
    support::assignZone(3, support::movingWall(1.0, 0.0));
    const double massBefore = mass();
    const int steps = support::runUntilSteady(2e-7, 1000, 60000);
    ASSERT_GT(steps, 0);
    double error = 0.0;
    for (const auto& [y, u] : uOfY)
        error = std::max(error, std::abs(uAt(0.5, y) - u));
    for (const auto& [x, v] : vOfX)
        error = std::max(error, std::abs(vAt(x, 0.5) - v));
    const double drift = std::abs(mass() - massBefore) / massBefore;
    std::printf("cavity Re 100, 64^2: largest deviation %.4f of the lid speed, mass drift %.1e, %d steps\n",
                error, drift, steps);
    EXPECT_LT(error, 0.01);
    EXPECT_LT(drift, 1e-12);
}

TEST_F(Flow, NaturalConvectionAtRa1e4HasThePublishedMeanNusseltNumber) {
    const int n = 64;
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::useLattice(0.8);
    initialiseFields(1.0, 0.1, 0.71, 1e4, 1.0, 1, 1, 0, 0, 0);
    support::assignZone(0, support::wallAt(0.5));
    support::assignZone(1, support::wallAt(-0.5));
    support::assignZone(2, {});
    support::assignZone(3, {});
    const int steps = support::runUntilSteady(5e-7, 1000, 60000);
    ASSERT_GT(steps, 0);
    const double nusselt = support::leftWallNusselt(n, 0.5);
    // 2.2448: de Vahl Davis, IJNMF 3 (1983) 249 as refined by Hortmann, Peric and Scheuerer, IJNMF 11 (1990)
    // 189.
    std::printf("natural convection Ra 1e4, 64^2: Nu %.4f (2.2448), %d steps\n", nusselt, steps);
    EXPECT_NEAR(nusselt, 2.2448, 0.015 * 2.2448);
}

TEST_F(Flow, CouetteFlowHasItsLinearProfile) {
    const int ny = 16;
    support::makeMesh(support::rectangles(16, ny), 4, support::sidesOfBox());
    support::useLattice(0.4);
    initialiseFields(1.0, 0.05, 1.0, 5.0, 1.0, 0, 0, 0, 0, 0);
    support::assignZone(0, support::outflowZone());
    support::assignZone(1, support::outflowZone());
    support::assignZone(2, {});
    support::assignZone(3, support::movingWall(1.0, 0.0));
    const int steps = support::runUntilSteady(1e-9, 500, 40000);
    ASSERT_GT(steps, 0);
    double error = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        error = std::max(error, std::abs(c.u / caseSettings.U0 - c.yc));
    std::printf("Couette flow: largest deviation %.2e after %d steps\n", error, steps);
    EXPECT_LT(error, 0.01);
}

TEST_F(Flow, ChannelWithOutflowReachesTheParabolaAndLetsOutWhatComesIn) {
    const int ny = 24;
    const double length = 5.0;
    support::makeMesh(support::rectangles(5 * ny, ny, length, 1.0), 4, support::sidesOfBox(length, 1.0));
    support::useLattice(0.5);
    initialiseFields(1.0, 0.1, 1.0, 20.0, 1.0, 0, 0, 0, 0, 0);
    support::assignZone(0, support::movingWall(1.0, 0.0));
    support::assignZone(1, support::outflowZone());
    support::assignZone(2, {});
    support::assignZone(3, {});
    const int steps = support::runUntilSteady(1e-7, 500, 60000);
    ASSERT_GT(steps, 0);
    const double out = throughput(0.9 * length, ny), in = throughput(0.1 * length, ny);
    double error = 0.0;
    for (int j = 0; j < ny; ++j) {
        const double y = (j + 0.5) / ny;
        const double mean = out; // rho is close to 1
        error = std::max(error, std::abs(uAt(0.9 * length, y) / mean - 6.0 * y * (1.0 - y)));
    }
    std::printf("channel: largest deviation from the parabola %.4f, rho u in %.5f out %.5f, %d steps\n",
                error, in, out, steps);
    EXPECT_LT(error, 0.015);
    EXPECT_NEAR(out / in, 1.0, 1e-3);
}
