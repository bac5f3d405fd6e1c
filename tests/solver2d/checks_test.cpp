// Residuals, their message, and the search for a NaN.
#include "solver2d/checks.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "support/mesh_builder.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <cmath>

using namespace fluvane;

namespace {

class Checks : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::rectangles(3, 2, 3.0, 1.0), 4, support::sidesOfBox(3.0, 1.0));
        setTerminalSink([this](const QString& line) { lines.append(line); });
    }
    void TearDown() override {
        setTerminalSink({});
        support::resetProcessState();
    }
    QStringList lines;
};

} // namespace

TEST_F(Checks, ResidualsAreRelativeChangesPrintedWithSixDigits) {
    for (CellRecord& c : mesh.cells2D) {
        c.uPrev = 3.0;
        c.vPrev = 4.0;
        c.u = 3.0;
        c.v = 4.0005;
        c.TPrev = 2.0;
        c.T = 2.5;
    }
    EXPECT_FALSE(checkConvergence2D(1e-9, 1e-9, "Time Steps=100"));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0], "Time Steps=100   error_u=0.0001   error_T=0.25");
}

TEST_F(Checks, DeliberateTemperatureSumsAreWeightedByTheSquaredAreaAndVelocitySumsAreNot) {
    support::PlaneCells plane = support::rectangles(2, 1);
    for (double& x : plane.x)
        x = x == 0.5 ? 0.25 : x; // areas 1/4 and 3/4
    support::makeMesh(plane, 4, support::sidesOfBox());
    for (CellRecord& c : mesh.cells2D) {
        c.uPrev = c.u = 1.0;
        c.TPrev = c.T = 1.0;
    }
    mesh.cells2D[0].u = 2.0;
    mesh.cells2D[0].T = 2.0;
    lines.clear(); // two cells side by side have no gradient across, and the geometry says so
    checkConvergence2D(1.0, 1.0, "");
    const double unweighted = std::sqrt(1.0 / 2.0);
    const double weighted = std::sqrt(0.0625 / (0.0625 + 0.5625));
    EXPECT_EQ(lines[0],
              "   error_u=" + QString::number(unweighted) + "   error_T=" + QString::number(weighted));
}

TEST_F(Checks, BothTolerancesAreStrict) {
    for (CellRecord& c : mesh.cells2D) {
        c.uPrev = 1.0;
        c.u = 1.5;
        c.TPrev = 1.0;
        c.T = 1.25;
    }
    EXPECT_TRUE(checkConvergence2D(0.6, 0.3, ""));
    EXPECT_FALSE(checkConvergence2D(0.5, 0.3, "")) << "equal counts as not converged";
    EXPECT_FALSE(checkConvergence2D(0.6, 0.25, ""));
}

TEST_F(Checks, FluidThatStartsFromRestDividesByTheSmallConstant) {
    mesh.cells2D[0].u = 1e-3;
    checkConvergence2D(1.0, 1.0, "");
    EXPECT_EQ(lines[0], "   error_u=1e+12   error_T=0");
}

TEST_F(Checks, HealthCheckNamesTheFirstCellWithANaN) {
    EXPECT_FALSE(hasNaN());
    mesh.cells2D[4].T = NAN;
    mesh.cells2D[2].rho = NAN;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(hasNaN());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-nanf2\n");
}

TEST_F(Checks, NaNInTheVelocityAloneAndInfinitiesPass) {
    mesh.cells2D[1].u = NAN;
    mesh.cells2D[3].rho = INFINITY;
    EXPECT_FALSE(hasNaN());
}

TEST_F(Checks, EmptyMeshIsConvergedAndHealthy) {
    mesh.clear();
    EXPECT_FALSE(hasNaN());
    EXPECT_TRUE(checkConvergence2D(1e-9, 1e-9, "x"));
    EXPECT_EQ(lines[0], "x   error_u=0   error_T=0");
}
