// Flow and natural convection against exact and published figures.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "solver2d/time_step.h"
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
    /// Mass that left through a zone in the last step, per unit of time.
    static double massFluxThrough(std::size_t zone) {
        double total = 0.0;
        const std::int32_t first = zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[zone - 1];
        for (std::int32_t i = first; i < mesh.zoneLastFace[zone]; ++i) {
            const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
            for (std::size_t k = 0; k < 9; ++k) {
                const Vec2 xi = velocitySet.xi2D[k];
                total += (xi.x * face.S0x + xi.y * face.S0y) * face.fFace[k];
            }
        }
        return total;
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
    support::useLattice(0.4);
    initialiseFields(1.0, 0.1, 1.0, 100.0, 1.0, 0, 0, 0, 0, 0);
    for (const int zone : {0, 1, 2})
        support::assignZone(zone, {});
    support::assignZone(3, support::movingWall(1.0, 0.0));
    const double massBefore = mass();
    const int steps = support::runUntilSteady(2e-7, 1000, 60000);
    ASSERT_GT(steps, 0);
    ASSERT_LT(steps, 60000) << "not settled";
    double error = 0.0;
    for (const auto& [y, u] : uOfY)
        error = std::max(error, std::abs(uAt(0.5, y) - u));
    for (const auto& [x, v] : vOfX)
        error = std::max(error, std::abs(vAt(x, 0.5) - v));
    const double drift = std::abs(mass() - massBefore) / massBefore;
    std::printf("cavity Re 100, 64^2: largest deviation %.4f of the lid speed, mass drift %.1e, %d steps\n",
                error, drift, steps);
    EXPECT_LT(error, 0.01);
    EXPECT_LT(drift, 1e-15 * steps) << "more than rounding";
}

TEST_F(Flow, NaturalConvectionAtRa1e4HasThePublishedMeanNusseltNumber) {
    const int n = 64;
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::useLattice(0.4);
    initialiseFields(1.0, 0.1, 0.71, 1e4, 1.0, 1, 1, 0, 0, 0);
    support::assignZone(0, support::wallAt(0.5));
    support::assignZone(1, support::wallAt(-0.5));
    support::assignZone(2, {});
    support::assignZone(3, {});
    const int steps = support::runUntilSteady(5e-7, 1000, 60000);
    ASSERT_GT(steps, 0);
    ASSERT_LT(steps, 60000) << "not settled";
    const double nusselt = support::leftWallNusselt(n, 0.5);
    // 2.2448: de Vahl Davis, IJNMF 3 (1983) 249 as refined by Hortmann, Peric and Scheuerer, IJNMF 11 (1990)
    // 189.
    std::printf("natural convection Ra 1e4, 64^2: Nu %.4f (2.2448), %d steps\n", nusselt, steps);
    EXPECT_NEAR(nusselt, 2.2448, 0.015 * 2.2448);
}

TEST_F(Flow, CouetteFlowHasItsLinearProfile) {
    const int n = 16;
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::useLattice(0.4);
    initialiseFields(1.0, 0.05, 1.0, 5.0, 1.0, 0, 0, 0, 0, 0);
    support::assignZone(2, {});
    support::assignZone(3, support::movingWall(1.0, 0.0));
    // The profile enters on the left and leaves on the right, face by face.
    for (std::int32_t i = mesh.interiorFaceCount; i < mesh.zoneLastFace[1]; ++i)
        assignBoundary2D(i, i + 1, mesh.faces2D[static_cast<std::size_t>(i)].yf, 0.0, 0, 0, 0.0, 0.0);
    const int steps = support::runUntilSteady(1e-9, 500, 40000);
    ASSERT_GT(steps, 0);
    ASSERT_LT(steps, 40000) << "not settled";
    double error = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        error = std::max(error, std::abs(c.u / caseSettings.U0 - c.yc));
    std::printf("Couette flow: largest deviation %.2e after %d steps\n", error, steps);
    EXPECT_LT(error, 0.01);
}

TEST_F(Flow, ChannelWithOutflowReachesTheParabolaAndGainsWhatComesInLessWhatGoesOut) {
    const int ny = 16;
    const double length = 5.0;
    support::makeMesh(support::rectangles(5 * ny, ny, length, 1.0), 4, support::sidesOfBox(length, 1.0));
    support::useLattice(0.4);
    initialiseFields(1.0, 0.1, 1.0, 20.0, 1.0, 0, 0, 0, 0, 0);
    support::assignZone(0, support::movingWall(1.0, 0.0));
    support::assignZone(1, support::outflowZone());
    support::assignZone(2, {});
    support::assignZone(3, {});
    for (int n = 0; n < 10000; ++n)
        step2D();
    double error = 0.0;
    for (const double x : {0.6 * length, 0.9 * length}) {
        double mean = 0.0;
        for (int j = 0; j < ny; ++j)
            mean += uAt(x, (j + 0.5) / ny) / ny;
        for (int j = 0; j < ny; ++j) {
            const double y = (j + 0.5) / ny;
            error = std::max(error, std::abs(uAt(x, y) / mean - 6.0 * y * (1.0 - y)));
        }
    }
    const double before = mass();
    step2D();
    const double in = -massFluxThrough(0), out = massFluxThrough(1);
    const double gained = mass() - before;
    // Nothing fixes the pressure between a velocity inlet and an outflow: the density drifts, and what comes
    // in and what goes out differ by just that.
    std::printf("channel: largest deviation from the parabola %.4f of the mean, out/in %.5f\n", error,
                out / in);
    EXPECT_LT(error, 0.015);
    EXPECT_NEAR(gained, caseSettings.dt * (in - out), 1e-13 * before);
    EXPECT_NEAR(out / in, 1.0, 5e-3);
}
