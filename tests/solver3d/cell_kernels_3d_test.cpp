// The 3D cell kernels on a single record.
#include "solver3d/cell_kernels.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/enthalpy.h"
#include "solver3d/equilibrium.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <vector>

using namespace fluvane;

namespace {

constexpr std::size_t Q = 19;

class CellKernels3D : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD3Q19();
        support::Tetrahedra box = support::boxOfTetrahedra(3, 3, 3);
        support::distort(box, {3.0, 3.0, 3.0}, 0.2);
        support::makeMesh(box, 6, support::sidesOfBox3D({3.0, 3.0, 3.0}));
        support::usePlainSettings(0.05);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        support::fillRandomState(9);
    }
    void TearDown() override { support::resetProcessState(); }

    static std::vector<double> heatAfterCollision() {
        collideCell3D(mesh.cells3D[7]);
        return {mesh.cells3D[7].gTildePlus.data(), mesh.cells3D[7].gTildePlus + Q};
    }
};

} // namespace

TEST_F(CellKernels3D, CollisionTouchesItsOwnCellOnly) {
    const double next = mesh.cells3D[8].fTildePlus[3];
    collideCell3D(mesh.cells3D[7]);
    EXPECT_NE(mesh.cells3D[7].fTildePlus[3], 0.0);
    EXPECT_EQ(mesh.cells3D[8].fTildePlus[3], next);
}

TEST_F(CellKernels3D, CollisionKeepsTheMassOfConsistentMoments) {
    CellRecord3D& c = mesh.cells3D[7];
    c.rho = c.u = c.v = c.w = 0.0;
    for (std::size_t k = 0; k < Q; ++k)
        c.rho += c.fTilde[k];
    collideCell3D(c);
    double plus = 0.0, bar = 0.0;
    for (std::size_t k = 0; k < Q; ++k) {
        plus += c.fTildePlus[k];
        bar += c.fBarPlus[k];
    }
    EXPECT_NEAR(plus, c.rho, 1e-14);
    EXPECT_NEAR(bar, c.rho, 1e-14);
}

TEST_F(CellKernels3D, DeliberateThereIsNoHeatSource) {
    caseSettings.heatSource = 0.0;
    const std::vector<double> without = heatAfterCollision();
    caseSettings.heatSource = 0.5;
    EXPECT_EQ(heatAfterCollision(), without);
}

TEST_F(CellKernels3D, DeliberateTheEnthalpyFormCollidesWithTheTemperatureEquilibrium) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    const std::vector<double> temperatureForm = heatAfterCollision();
    caseSettings.thermalMode = 1;
    mesh.cells3D[7].H = 5.0;
    EXPECT_EQ(heatAfterCollision(), temperatureForm);
    caseSettings.lftfOn = true;
    EXPECT_EQ(heatAfterCollision(), temperatureForm);
}

TEST_F(CellKernels3D, GradientOfALinearFieldIsExactOnADistortedMesh) {
    for (CellRecord3D& c : mesh.cells3D) {
        for (std::size_t k = 0; k < Q; ++k) {
            c.fBarPlus[k] = 1.0 + 0.5 * c.xc - 0.25 * c.yc + 0.75 * c.zc + static_cast<double>(k);
            c.gBarPlus[k] = 2.0 * c.xc + static_cast<double>(k) * c.zc;
        }
    }
    for (CellRecord3D& c : mesh.cells3D) {
        computeCellGradients3D(c);
        for (std::size_t k = 0; k < Q; ++k) {
            EXPECT_NEAR(c.gradFBarPlus[k].x, 0.5, 1e-11);
            EXPECT_NEAR(c.gradFBarPlus[k].y, -0.25, 1e-11);
            EXPECT_NEAR(c.gradFBarPlus[k].z, 0.75, 1e-11);
            EXPECT_NEAR(c.gradGBarPlus[k].x, 2.0, 1e-11);
            EXPECT_NEAR(c.gradGBarPlus[k].y, 0.0, 1e-11);
            EXPECT_NEAR(c.gradGBarPlus[k].z, static_cast<double>(k), 1e-11);
        }
    }
}

TEST_F(CellKernels3D, UpdateUsesTheForceFromBeforeTheHeatUpdateOfTheSameStep) {
    caseSettings.buoyancyOn = true;
    CellRecord3D& c = mesh.cells3D[7];
    collideCell3D(c);
    c.Fz = 3.0;
    updateCell3D(c);
    double rho = 0.0, momentum = 0.0;
    for (std::size_t k = 0; k < Q; ++k) {
        rho += c.fTilde[k];
        momentum += velocitySet.xi3D[k].z * c.fTilde[k];
    }
    EXPECT_NEAR(c.w, momentum / rho + caseSettings.dt / 2.0 * 3.0, 1e-14);
}

TEST_F(CellKernels3D, DeliberateBuoyancyActsAlongZ) {
    caseSettings.buoyancyOn = true;
    CellRecord3D& c = mesh.cells3D[7];
    collideCell3D(c);
    updateCell3D(c);
    EXPECT_EQ(c.Fx, 0.0);
    EXPECT_EQ(c.Fy, 0.0);
    EXPECT_EQ(c.Fz, caseSettings.buoyancyCoeff * c.T);
    caseSettings.buoyancyOn = false;
    updateCell3D(c);
    EXPECT_EQ(c.Fz, 0.0);
}

TEST_F(CellKernels3D, DeliberateTheEnthalpyFormNeverHoldsTheVelocityStill) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    caseSettings.flowOn = 0;
    CellRecord3D& c = mesh.cells3D[7];
    c.u = 0.3;
    c.w = 0.2;
    for (std::size_t k = 0; k < Q; ++k)
        c.gTildePlus[k] = -0.01;
    for (std::size_t j = 0; j < 4; ++j)
        for (std::size_t k = 0; k < Q; ++k)
            mesh.faces3D[static_cast<std::size_t>(c.faces[j])].gFace[k] = 0.0;
    updateCell3D(c);
    EXPECT_NEAR(c.H, -0.19, 1e-15);
    EXPECT_EQ(c.T, temperatureOf(c.H));
    EXPECT_EQ(liquidFraction(c.H), 0.0);
    EXPECT_EQ(c.u, 0.3);
    EXPECT_EQ(c.w, 0.2);
}
