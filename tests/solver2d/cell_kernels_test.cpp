// The cell kernels on a single record.
#include "solver2d/cell_kernels.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/enthalpy.h"
#include "support/mesh_builder.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

using namespace fluvane;

namespace {

class CellKernels : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
        support::PlaneCells plane = support::rectangles(6, 5);
        support::distort(plane, 0.05);
        support::makeMesh(plane, 4, support::sidesOfBox());
        support::usePlainSettings(0.01);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        support::fillRandomState(9);
    }
    void TearDown() override { support::resetProcessState(); }
};

} // namespace

TEST_F(CellKernels, CollisionTouchesItsOwnCellOnly) {
    const double next = mesh.cells2D[8].fTildePlus[3];
    collideCell(mesh.cells2D[7]);
    EXPECT_NE(mesh.cells2D[7].fTildePlus[3], 0.0);
    EXPECT_EQ(mesh.cells2D[8].fTildePlus[3], next);
}

TEST_F(CellKernels, CollisionKeepsTheMassOfConsistentMoments) {
    CellRecord& c = mesh.cells2D[7];
    c.rho = c.u = c.v = 0.0;
    for (std::size_t k = 0; k < 9; ++k)
        c.rho += c.fTilde[k];
    collideCell(c);
    double plus = 0.0, bar = 0.0;
    for (std::size_t k = 0; k < 9; ++k) {
        plus += c.fTildePlus[k];
        bar += c.fBarPlus[k];
    }
    EXPECT_NEAR(plus, c.rho, 1e-15);
    EXPECT_NEAR(bar, c.rho, 1e-15);
}

TEST_F(CellKernels, GradientOfALinearFieldIsExactOnADistortedMesh) {
    for (CellRecord& c : mesh.cells2D) {
        for (std::size_t k = 0; k < 9; ++k) {
            c.fBarPlus[k] = 1.0 + 0.5 * c.xc - 0.25 * c.yc + static_cast<double>(k);
            c.gBarPlus[k] = 2.0 * c.xc + static_cast<double>(k) * c.yc;
        }
    }
    for (CellRecord& c : mesh.cells2D) {
        computeCellGradients(c);
        for (std::size_t k = 0; k < 9; ++k) {
            EXPECT_NEAR(c.gradFBarPlus[k].x, 0.5, 1e-12);
            EXPECT_NEAR(c.gradFBarPlus[k].y, -0.25, 1e-12);
            EXPECT_NEAR(c.gradGBarPlus[k].x, 2.0, 1e-12);
            EXPECT_NEAR(c.gradGBarPlus[k].y, static_cast<double>(k), 1e-12);
        }
    }
}

TEST_F(CellKernels, CellWithoutNeighboursGetsAZeroGradient) {
    support::makeMesh(support::rectangles(1, 1), 4, support::sidesOfBox());
    ASSERT_EQ(mesh.cellCount, 1);
    support::fillRandomState(2);
    const CellRecord& cell = mesh.cells2D[0];
    computeCellGradients(mesh.cells2D[0]);
    for (std::size_t k = 0; k < 9; ++k) {
        EXPECT_EQ(cell.gradFBarPlus[k].x, 0.0);
        EXPECT_EQ(cell.gradFBarPlus[k].y, 0.0);
        EXPECT_EQ(cell.gradGBarPlus[k].x, 0.0);
        EXPECT_EQ(cell.gradGBarPlus[k].y, 0.0);
    }
}

TEST_F(CellKernels, UpdateUsesTheForceFromBeforeTheHeatUpdateOfTheSameStep) {
    caseSettings.buoyancyOn = true;
    CellRecord& c = mesh.cells2D[7];
    collideCell(c);
    c.Fy = 3.0;
    const double dt = caseSettings.dt;
    updateCell(c);
    double rho = 0.0, momentum = 0.0;
    for (std::size_t k = 0; k < 9; ++k) {
        rho += c.fTilde[k];
        momentum += velocitySet.xi2D[k].y * c.fTilde[k];
    }
    EXPECT_NEAR(c.v, momentum / rho + dt / 2.0 * 3.0, 1e-14);
    EXPECT_EQ(c.Fy, caseSettings.buoyancyCoeff * c.T);
}

TEST_F(CellKernels, CellExactlyAtTheSolidusIsHeldStillUnlessLftfIsOn) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    caseSettings.flowOn = 0;
    for (const bool lftf : {false, true}) {
        caseSettings.lftfOn = lftf;
        CellRecord& c = mesh.cells2D[7];
        c.u = 0.3;
        c.v = 0.2;
        for (std::size_t k = 0; k < 9; ++k)
            c.gTildePlus[k] = 0.0;
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t k = 0; k < 9; ++k)
                mesh.faces2D[static_cast<std::size_t>(c.faces[j])].gFace[k] = 0.0;
        updateCell(c);
        EXPECT_EQ(c.H, 0.0);
        EXPECT_EQ(liquidFraction(c.H), 0.0);
        EXPECT_EQ(c.u, lftf ? 0.3 : 0.0);
        EXPECT_EQ(c.v, lftf ? 0.2 : 0.0);
    }
}

TEST_F(CellKernels, CellHalfMeltedFlowsAndOneWithLessIsHeldStill) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    caseSettings.flowOn = 0;
    for (const bool half : {true, false}) {
        CellRecord& c = mesh.cells2D[7];
        c.u = 0.3;
        for (std::size_t k = 0; k < 9; ++k)
            c.gTildePlus[k] = 0.0;
        c.gTildePlus[0] = caseSettings.Hliquidus * (half ? 0.5 : 0.4999);
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t k = 0; k < 9; ++k)
                mesh.faces2D[static_cast<std::size_t>(c.faces[j])].gFace[k] = 0.0;
        updateCell(c);
        EXPECT_EQ(liquidFraction(c.H) < 0.5, !half);
        EXPECT_EQ(c.u, half ? 0.3 : 0.0);
    }
}
