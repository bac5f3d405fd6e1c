// Residuals of a 3D field, and the search for a NaN in one.
#include "solver3d/checks.h"

#include "solver2d/checks.h"
#include "support/captured_terminal.h"

#include <cmath>

using namespace fluvane;

namespace {

class Checks3D : public CapturedTerminalTest {
protected:
    void SetUp() override {
        caseSettings.is3D = true;
        velocitySet.velocityCount = 15;
        mesh.allocateCells3D(4);
    }
};

} // namespace

TEST_F(Checks3D, ResidualsAreRelativeChangesPrintedWithSixDigits) {
    for (CellRecord3D& c : mesh.cells3D) {
        c.uPrev = c.u = 2.0;
        c.vPrev = c.v = 3.0;
        c.wPrev = 6.0;
        c.w = 6.0007;
        c.TPrev = 3.0;
        c.T = 4.0;
    }
    EXPECT_FALSE(checkConvergence3D("Time Steps=100"));
    EXPECT_EQ(lines, QStringList("Time Steps=100   error_u=0.0001   error_T=0.333333"));
}

TEST_F(Checks3D, EachVelocityComponentCounts) {
    for (double CellRecord3D::*const component : {&CellRecord3D::u, &CellRecord3D::v, &CellRecord3D::w}) {
        for (CellRecord3D& c : mesh.cells3D)
            c.u = c.v = c.w = 0.0;
        mesh.cells3D[2].*component = 1e-3;
        lines.clear();
        EXPECT_FALSE(checkConvergence3D(""));
        EXPECT_EQ(lines, QStringList("   error_u=1e+12   error_T=0"));
    }
    for (double CellRecord3D::*const component :
         {&CellRecord3D::uPrev, &CellRecord3D::vPrev, &CellRecord3D::wPrev}) {
        for (CellRecord3D& c : mesh.cells3D)
            c.u = c.v = c.w = c.uPrev = c.vPrev = c.wPrev = 0.0;
        mesh.cells3D[1].*component = 1e-3;
        lines.clear();
        checkConvergence3D("");
        EXPECT_EQ(lines, QStringList("   error_u=1   error_T=0"));
    }
}

TEST_F(Checks3D, DeliberateSumsAreNotWeightedByTheSizeOfTheCells) {
    for (CellRecord3D& c : mesh.cells3D)
        c.uPrev = c.u = c.TPrev = c.T = 1.0;
    mesh.cells3D[0].volume = 100.0;
    mesh.cells3D[0].u = 2.0;
    mesh.cells3D[0].T = 2.0;
    checkConvergence3D("");
    EXPECT_EQ(lines, QStringList("   error_u=0.5   error_T=0.5"));
}

TEST_F(Checks3D, DeliberateTheThresholdIsFixedAndStrict) {
    const auto converged = [](double changeU, double changeT) {
        mesh.clear();
        mesh.allocateCells3D(1);
        CellRecord3D& c = mesh.cells3D[0];
        c.wPrev = c.TPrev = 1.0;
        c.w = 1.0 + changeU;
        c.T = 1.0 + changeT;
        return checkConvergence3D("");
    };
    EXPECT_TRUE(converged(0.0, 0.0));
    EXPECT_TRUE(converged(9.9e-10, 9.9e-10));
    EXPECT_FALSE(converged(1.1e-9, 0.0));
    EXPECT_FALSE(converged(0.0, 1.1e-9));
}

TEST_F(Checks3D, AnErrorEqualToTheThresholdIsNotConverged) {
    mesh.clear();
    mesh.allocateCells3D(1);
    // The denominator is 1 to the last bit, and the square root of the squared change is the change.
    CellRecord3D& c = mesh.cells3D[0];
    c.uPrev = c.u = c.TPrev = c.T = 1.0;
    c.w = 1e-9;
    ASSERT_EQ(std::sqrt(1e-9 * 1e-9 / (1.0 + 1e-30)), 1e-9);
    EXPECT_FALSE(checkConvergence3D(""));
    c.w = std::nextafter(1e-9, 0.0);
    EXPECT_TRUE(checkConvergence3D(""));
}

TEST_F(Checks3D, HealthCheckLooksAtTheCellsOfA3DCase) {
    EXPECT_FALSE(hasNaN());
    mesh.cells3D[3].rho = NAN;
    mesh.cells3D[1].T = NAN;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(hasNaN());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "-nanf1\n");
}

TEST_F(Checks3D, EmptyMeshIsConverged) {
    mesh.clear();
    EXPECT_TRUE(checkConvergence3D("x"));
    EXPECT_EQ(lines, QStringList("x   error_u=0   error_T=0"));
}
