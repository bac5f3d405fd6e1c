// The 3D face kernels on a single record: upwinding, walls, outflow, thermal conditions.
#include "solver3d/face_kernels.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "setup/boundary_assignment.h"
#include "solver3d/cell_kernels.h"
#include "solver3d/equilibrium.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace fluvane;

namespace {

constexpr std::size_t Q = 19;

class FaceKernels3D : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD3Q19();
        support::makeMesh(support::boxOfTetrahedra(3, 3, 3), 6, support::sidesOfBox3D({3.0, 3.0, 3.0}));
        support::usePlainSettings(0.05);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        support::fillRandomState(21);
        for (CellRecord3D& c : mesh.cells3D)
            collideCell3D(c);
        for (CellRecord3D& c : mesh.cells3D)
            computeCellGradients3D(c);
    }
    void TearDown() override { support::resetProcessState(); }

    /// The first face of a side: x low, x high, y low, y high, z low, z high = 0 .. 5.
    static FaceRecord3D& wall(std::size_t zone) {
        const std::int32_t first = zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[zone - 1];
        return mesh.faces3D[static_cast<std::size_t>(first)];
    }
    static const CellRecord3D& cellOf(const FaceRecord3D& face) {
        return mesh.cells3D[static_cast<std::size_t>(face.c0)];
    }
    static double outward(const FaceRecord3D& face, std::size_t k) {
        const Vec3 xi = velocitySet.xi3D[k];
        return xi.x * face.n0x + xi.y * face.n0y + xi.z * face.n0z;
    }
    static double fromCell(const FaceRecord3D& face, const CellRecord3D& c, std::size_t k, const double* bar,
                           const GradientSlice3D& gradient) {
        const Vec3 xi = velocitySet.xi3D[k];
        const double h = caseSettings.dt / 2.0;
        return bar[k] + (face.xf - c.xc - xi.x * h) * gradient[k].x +
               (face.yf - c.yc - xi.y * h) * gradient[k].y + (face.zf - c.zc - xi.z * h) * gradient[k].z;
    }
    static double flowFrom(const FaceRecord3D& face, const CellRecord3D& c, std::size_t k) {
        return fromCell(face, c, k, c.fBarPlus, c.gradFBarPlus);
    }
    static double heatFrom(const FaceRecord3D& face, const CellRecord3D& c, std::size_t k) {
        return fromCell(face, c, k, c.gBarPlus, c.gradGBarPlus);
    }

    /// The bar value that was recovered into the face's distribution with this face velocity.
    static double heatBar(const FaceRecord3D& face, std::size_t k, double u, double v, double w) {
        const double h = caseSettings.dt / 2.0, tau = caseSettings.tauG;
        const double eq = geqT3D(static_cast<int>(k), face.T, u, v, w);
        return (face.gFace[k] * (2.0 * tau + h) - h * eq) / (2.0 * tau);
    }
    static double heatBar(const FaceRecord3D& face, std::size_t k) {
        return heatBar(face, k, face.u, face.v, face.w);
    }
    static double flowBar(const FaceRecord3D& face, std::size_t k) {
        const double h = caseSettings.dt / 2.0, tau = caseSettings.tauF;
        const int i = static_cast<int>(k);
        const double eq = feq3D(i, face.rho, face.u, face.v, face.w);
        const double force = forcing3D(i, face.rho, face.u, face.v, face.w, face.Fx, face.Fy, face.Fz);
        return (face.fFace[k] * (2.0 * tau + h) - h * eq - tau * h * force) / (2.0 * tau);
    }
    static std::size_t opposite(std::size_t k) { return static_cast<std::size_t>(velocitySet.opposite[k]); }
    static constexpr double tiny = 2e-15;
};

} // namespace

TEST_F(FaceKernels3D, EachVelocityComesFromItsUpwindCellAndTangentialOnesFromTheFirst) {
    int tangential = 0;
    for (std::int32_t i = 0; i < mesh.interiorFaceCount; ++i) {
        FaceRecord3D& face = mesh.faces3D[static_cast<std::size_t>(i)];
        const CellRecord3D& c0 = mesh.cells3D[static_cast<std::size_t>(face.c0)];
        const CellRecord3D& c1 = mesh.cells3D[static_cast<std::size_t>(face.c1)];
        const double u = face.u, v = face.v, w = face.w;
        reconstructInteriorFace3D(face);
        for (std::size_t k = 0; k < Q; ++k) {
            const CellRecord3D& up = outward(face, k) >= 0.0 ? c0 : c1;
            tangential += k > 0 && outward(face, k) == 0.0;
            EXPECT_NEAR(flowBar(face, k), flowFrom(face, up, k), tiny);
            EXPECT_NEAR(heatBar(face, k, u, v, w), heatFrom(face, up, k), tiny);
        }
    }
    EXPECT_GT(tangential, 0);
}

TEST_F(FaceKernels3D, DeliberateHeatIsRecoveredWithTheFaceVelocityOfThePreviousStep) {
    FaceRecord3D& face = mesh.faces3D[3];
    face.u = 0.3;
    face.v = -0.2;
    face.w = 0.1;
    reconstructInteriorFace3D(face);
    ASSERT_NE(face.u, 0.3);
    double total = 0.0;
    for (std::size_t k = 0; k < Q; ++k)
        total += heatBar(face, k, 0.3, -0.2, 0.1);
    EXPECT_NEAR(total, face.T, 1e-14);
    const CellRecord3D& up = mesh.cells3D[static_cast<std::size_t>(face.c0)];
    EXPECT_NEAR(heatBar(face, 0, 0.3, -0.2, 0.1), heatFrom(face, up, 0), tiny);
    EXPECT_GT(std::abs(heatBar(face, 0) - heatFrom(face, up, 0)), 1e-6);
}

TEST_F(FaceKernels3D, FaceVelocityTakesAQuarterStepOfTheForceOfTheSameFaceAlongZ) {
    caseSettings.buoyancyOn = true;
    FaceRecord3D& face = mesh.faces3D[3];
    reconstructInteriorFace3D(face);
    double rho = 0.0, mz = 0.0;
    for (std::size_t k = 0; k < Q; ++k) {
        rho += flowBar(face, k);
        mz += velocitySet.xi3D[k].z * flowBar(face, k);
    }
    EXPECT_EQ(face.Fx, 0.0);
    EXPECT_EQ(face.Fy, 0.0);
    EXPECT_EQ(face.Fz, caseSettings.buoyancyCoeff * face.T);
    EXPECT_NEAR(face.w, mz / rho + caseSettings.dt / 4.0 * face.Fz, 1e-14);
}

TEST_F(FaceKernels3D, DeliberateTheFaceTemperatureIsTheSumAlsoInTheEnthalpyForm) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    FaceRecord3D& face = mesh.faces3D[3];
    reconstructInteriorFace3D(face);
    const double sum = face.T;
    caseSettings.thermalMode = 1;
    reconstructInteriorFace3D(face);
    EXPECT_EQ(face.T, sum);
}

TEST_F(FaceKernels3D, WithoutHeatTheFaceTemperatureIsZeroAndItsForceUntouched) {
    caseSettings.heatOn = false;
    FaceRecord3D& face = mesh.faces3D[3];
    const double Fx = face.Fx;
    reconstructInteriorFace3D(face);
    EXPECT_EQ(face.T, 0.0);
    EXPECT_EQ(face.Fx, Fx);
}

TEST_F(FaceKernels3D, WithoutFlowTheFaceVelocityStays) {
    caseSettings.flowOn = 0;
    FaceRecord3D& face = mesh.faces3D[3];
    const double u = face.u, w = face.w;
    reconstructInteriorFace3D(face);
    EXPECT_EQ(face.u, u);
    EXPECT_EQ(face.w, w);
}

TEST_F(FaceKernels3D, WallReflectsWithItsVelocityAndDeliberatelyKeepsItsDensity) {
    FaceRecord3D& face = wall(5); // top
    face.flowKind = 0;
    face.rho = 1.0;
    face.u = 0.08;
    face.v = face.w = 0.0;
    treatBoundaryFace3DFlow(face);
    const CellRecord3D& c = cellOf(face);
    ASSERT_NE(c.rho, 1.0);
    EXPECT_EQ(face.rho, 1.0);
    EXPECT_EQ(face.u, 0.08);
    EXPECT_NEAR(flowBar(face, 0), flowFrom(face, c, 0), tiny);
    for (std::size_t k = 1; k < Q; ++k) {
        if (!(outward(face, k) > 0.0))
            continue;
        const double bar = flowFrom(face, c, k);
        EXPECT_NEAR(flowBar(face, k), bar, tiny);
        const double kick = 2.0 * velocitySet.weights[k] * velocitySet.xi3D[k].x * 0.08 / caseSettings.RT;
        EXPECT_NEAR(flowBar(face, opposite(k)), bar - kick, tiny);
    }
}

TEST_F(FaceKernels3D, RotationIsTreatedAsTranslation) {
    FaceRecord3D& face = wall(5);
    face.flowKind = 0;
    treatBoundaryFace3DFlow(face);
    const std::vector<double> translation(face.fFace.data(), face.fFace + Q);
    face.flowKind = 1;
    treatBoundaryFace3DFlow(face);
    EXPECT_EQ(std::vector<double>(face.fFace.data(), face.fFace + Q), translation);
}

TEST_F(FaceKernels3D, TheLaterVisitOfATangentialPairWins) {
    FaceRecord3D& face = wall(5);
    face.flowKind = 0;
    face.u = 0.08;
    face.v = face.w = 0.0;
    treatBoundaryFace3DFlow(face);
    const CellRecord3D& c = cellOf(face);
    for (std::size_t k = 1; k < Q; ++k) {
        if (outward(face, k) != 0.0 || k < opposite(k))
            continue;
        EXPECT_NEAR(flowBar(face, k), flowFrom(face, c, k), tiny);
        const double kick = 2.0 * velocitySet.weights[k] * velocitySet.xi3D[k].x * 0.08 / caseSettings.RT;
        EXPECT_NEAR(flowBar(face, opposite(k)), flowFrom(face, c, k) - kick, tiny);
    }
}

TEST_F(FaceKernels3D, DeliberateOutflowCopiesUAndVButNotWAndKeepsItsDensity) {
    assignBoundary3D(mesh.zoneLastFace[0], mesh.zoneLastFace[1], 0.1, 0.2, 0.3, 2, 0, 0.0);
    FaceRecord3D& face = wall(1);
    const double assignedW = face.w;
    ASSERT_EQ(assignedW, 0.3 * caseSettings.U0);
    treatBoundaryFace3DFlow(face);
    const CellRecord3D& c = cellOf(face);
    EXPECT_EQ(face.u, c.u);
    EXPECT_EQ(face.v, c.v);
    EXPECT_EQ(face.w, assignedW);
    EXPECT_EQ(face.rho, 1.0);
    EXPECT_NE(c.rho, 1.0);
}

TEST_F(FaceKernels3D, OutflowFillsIncomingVelocitiesWithoutGradientButNotTheRestVelocity) {
    FaceRecord3D& face = wall(1);
    face.flowKind = 2;
    treatBoundaryFace3DFlow(face);
    const CellRecord3D& c = cellOf(face);
    for (std::size_t k = 1; k < Q; ++k) {
        if (!(outward(face, k) > 0.0))
            continue;
        EXPECT_NEAR(flowBar(face, k), flowFrom(face, c, k), tiny);
        EXPECT_NEAR(flowBar(face, opposite(k)), c.fBarPlus[opposite(k)], tiny);
    }
    ASSERT_GT(std::abs(flowFrom(face, c, 0) - c.fBarPlus[0]), 1e-6);
    EXPECT_NEAR(flowBar(face, 0), flowFrom(face, c, 0), tiny)
        << "the rest velocity counts as outgoing and is never overwritten";
}

TEST_F(FaceKernels3D, AdiabaticWallMirrorsHeatAndTakesTheCellsTemperature) {
    FaceRecord3D& face = wall(0);
    face.thermalKind = 0;
    treatBoundaryFace3DHeat(face);
    const CellRecord3D& c = cellOf(face);
    EXPECT_EQ(face.T, c.T);
    EXPECT_NEAR(heatBar(face, 0), heatFrom(face, c, 0), tiny);
    for (std::size_t k = 1; k < Q; ++k)
        if (outward(face, k) > 0.0) {
            EXPECT_NEAR(heatBar(face, opposite(k)), heatFrom(face, c, k), tiny);
        }
}

TEST_F(FaceKernels3D, WallTemperatureIsKeptAndHeatAntiMirrored) {
    FaceRecord3D& face = wall(0);
    face.thermalKind = 1;
    face.T = 0.75;
    treatBoundaryFace3DHeat(face);
    EXPECT_EQ(face.T, 0.75);
    for (std::size_t k = 1; k < Q; ++k)
        if (outward(face, k) > 0.0) {
            EXPECT_NEAR(heatBar(face, opposite(k)),
                        2.0 * velocitySet.weights[k] * 0.75 - heatFrom(face, cellOf(face), k), tiny);
        }
}

TEST_F(FaceKernels3D, WallWithZeroFluxMirrorsLikeAnAdiabaticOneButSumsItsTemperaturePerVisit) {
    FaceRecord3D& face = wall(0);
    face.thermalKind = 2;
    face.q = 0.0;
    treatBoundaryFace3DHeat(face);
    const CellRecord3D& c = cellOf(face);
    double visited = heatFrom(face, c, 0);
    for (std::size_t k = 1; k < Q; ++k) {
        if (!(outward(face, k) >= 0.0))
            continue;
        visited += 2.0 * heatFrom(face, c, k);
        if (outward(face, k) > 0.0) {
            EXPECT_NEAR(heatBar(face, opposite(k)), heatFrom(face, c, k), tiny);
        }
    }
    EXPECT_NEAR(face.T, visited, 1e-14);
    EXPECT_NE(face.T, c.T);
}

TEST_F(FaceKernels3D, PositiveFluxHeatsThroughTheMirroredVelocities) {
    FaceRecord3D& face = wall(0);
    face.thermalKind = 2;
    face.q = 0.2;
    treatBoundaryFace3DHeat(face);
    const double h = caseSettings.dt / 2.0;
    for (std::size_t k = 1; k < Q; ++k) {
        if (!(outward(face, k) > 0.0))
            continue;
        const double added = outward(face, k) * velocitySet.weights[k] * (2.0 * caseSettings.tauG + h) * 0.2 /
                             caseSettings.alpha;
        EXPECT_NEAR(heatBar(face, opposite(k)), heatFrom(face, cellOf(face), k) + added, tiny);
    }
}

TEST_F(FaceKernels3D, WallForceFollowsTheWallTemperatureOnlyWithBuoyancyAndActsAlongZ) {
    FaceRecord3D& face = wall(0);
    face.thermalKind = 1;
    face.T = 0.5;
    face.Fx = 0.7;
    face.Fz = 0.9;
    treatBoundaryFace3DHeat(face);
    EXPECT_EQ(face.Fx, 0.7) << "left as it is without buoyancy";
    EXPECT_EQ(face.Fz, 0.9);
    caseSettings.buoyancyOn = true;
    treatBoundaryFace3DHeat(face);
    EXPECT_EQ(face.Fx, 0.0);
    EXPECT_EQ(face.Fy, 0.0);
    EXPECT_EQ(face.Fz, caseSettings.buoyancyCoeff * 0.5);
}

TEST_F(FaceKernels3D, EachHalfOfTheBoundaryLeavesTheOthersDistributionAlone) {
    FaceRecord3D& face = wall(2);
    std::fill_n(face.fFace.data(), Q, -7.0);
    treatBoundaryFace3DHeat(face);
    EXPECT_EQ(face.fFace[4], -7.0);
    std::fill_n(face.gFace.data(), Q, -7.0);
    treatBoundaryFace3DFlow(face);
    EXPECT_EQ(face.gFace[4], -7.0);
    EXPECT_NE(face.fFace[4], -7.0);
}
