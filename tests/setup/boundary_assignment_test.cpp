// Boundary assignment: what a wizard page leaves in the face records.
#include "setup/boundary_assignment.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "velocity/velocity_set.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace fluvane {
namespace {

constexpr std::int32_t faceCount = 6;

class BoundaryAssignment : public ::testing::Test {
protected:
    void SetUp() override {
        resetAll();
        velocitySet.velocityCount = 9;
        mesh.allocateFaces2D(faceCount);
        mesh.faces3D = HugeArray<FaceRecord3D>(faceCount);
        for (std::size_t i = 0; i < faceCount; ++i) { // values no assignment below stores
            mesh.faces2D[i].rho = mesh.faces2D[i].T = mesh.faces2D[i].q = mesh.faces2D[i].fl = -5.0;
            mesh.faces3D[i].rho = mesh.faces3D[i].T = mesh.faces3D[i].q = -5.0;
        }
        caseSettings.U0 = 0.5;
    }
    void TearDown() override { resetAll(); }

private:
    static void resetAll() {
        caseSettings = CaseSettings{};
        velocitySet = VelocitySet{};
        mesh.clear();
    }
};

TEST_F(BoundaryAssignment, WritesExactlyTheFacesOfTheRange) {
    assignBoundary2D(2, 4, 0.6, -0.8, 1, 1, 0.25, 0.75);
    for (std::size_t i = 0; i < faceCount; ++i) {
        const FaceRecord& face = mesh.faces2D[i];
        const bool inside = i == 2 || i == 3;
        EXPECT_EQ(face.rho, inside ? 1.0 : -5.0) << i;
        EXPECT_EQ(face.u, inside ? 0.5 * 0.6 : 0.0) << i;
        EXPECT_EQ(face.v, inside ? 0.5 * -0.8 : 0.0) << i;
        EXPECT_EQ(face.flowKind, inside ? 1 : 0) << i;
        EXPECT_EQ(face.thermalKind, inside ? 1 : 0) << i;
        EXPECT_EQ(face.T, inside ? 0.25 : -5.0) << i;
        EXPECT_EQ(face.fl, inside ? 0.75 : -5.0) << i;
        EXPECT_EQ(face.q, -5.0) << i;
    }
}

TEST_F(BoundaryAssignment, WritesThreeComponentsIn3D) {
    assignBoundary3D(1, 2, 0.0, 0.6, 0.8, 2, 2, 3.0);
    for (std::size_t i = 0; i < faceCount; ++i) {
        const FaceRecord3D& face = mesh.faces3D[i];
        const bool inside = i == 1;
        EXPECT_EQ(face.rho, inside ? 1.0 : -5.0) << i;
        EXPECT_EQ(face.u, 0.0) << i;
        EXPECT_EQ(face.v, inside ? 0.5 * 0.6 : 0.0) << i;
        EXPECT_EQ(face.w, inside ? 0.5 * 0.8 : 0.0) << i;
        EXPECT_EQ(face.flowKind, inside ? 2 : 0) << i;
        EXPECT_EQ(face.thermalKind, inside ? 2 : 0) << i;
        EXPECT_EQ(face.q, inside ? 3.0 : -5.0) << i;
        EXPECT_EQ(face.T, -5.0) << i;
    }
    EXPECT_EQ(mesh.faces2D[1].rho, -5.0) << "the other dimension's records are not touched";
}

TEST_F(BoundaryAssignment, StoresTheVelocityForEveryFlowKindOutflowIncluded) {
    for (const std::int32_t flowKind : {0, 1, 2, 9}) {
        assignBoundary2D(0, 1, flowKind + 1.0, 0.0, flowKind, 0, 0.0, 0.0);
        EXPECT_EQ(mesh.faces2D[0].u, 0.5 * (flowKind + 1.0));
        EXPECT_EQ(mesh.faces2D[0].flowKind, flowKind);
        assignBoundary3D(0, 1, 0.0, 0.0, flowKind + 1.0, flowKind, 0, 0.0);
        EXPECT_EQ(mesh.faces3D[0].w, 0.5 * (flowKind + 1.0));
        EXPECT_EQ(mesh.faces3D[0].flowKind, flowKind);
    }
}

TEST_F(BoundaryAssignment, KeepsTheOldWallTemperatureWhenAZoneBecomesAdiabatic) {
    assignBoundary2D(0, 6, 0.0, 0.0, 0, 1, 0.5, 0.0);
    assignBoundary2D(0, 6, 0.0, 0.0, 0, 0, 9.0, 0.0);
    EXPECT_EQ(mesh.faces2D[5].T, 0.5);
    EXPECT_EQ(mesh.faces2D[5].q, -5.0);
    EXPECT_EQ(mesh.faces2D[5].thermalKind, 0);
    assignBoundary3D(0, 6, 0.0, 0.0, 0.0, 0, 2, 0.5);
    assignBoundary3D(0, 6, 0.0, 0.0, 0.0, 0, 0, 9.0);
    EXPECT_EQ(mesh.faces3D[5].q, 0.5);
    EXPECT_EQ(mesh.faces3D[5].T, -5.0);
}

TEST_F(BoundaryAssignment, StoresFluxAndTemperatureApart) {
    assignBoundary2D(0, 1, 0.0, 0.0, 0, 1, 0.5, 0.0);
    assignBoundary2D(0, 1, 0.0, 0.0, 0, 2, 2.5, 0.0);
    EXPECT_EQ(mesh.faces2D[0].T, 0.5);
    EXPECT_EQ(mesh.faces2D[0].q, 2.5);
}

TEST_F(BoundaryAssignment, LeavesTemperatureAndFluxAloneForAnyOtherThermalKind) {
    for (const std::int32_t kind : {-1, 0, 3}) {
        assignBoundary2D(0, 1, 0.0, 0.0, 0, kind, 9.0, 0.0);
        EXPECT_EQ(mesh.faces2D[0].T, -5.0) << kind;
        EXPECT_EQ(mesh.faces2D[0].q, -5.0) << kind;
        EXPECT_EQ(mesh.faces2D[0].thermalKind, kind) << "kinds are stored as given";
    }
}

TEST_F(BoundaryAssignment, StoresTheLiquidFractionForEveryThermalKind) {
    for (const std::int32_t kind : {0, 1, 2, 3}) {
        assignBoundary2D(0, 1, 0.0, 0.0, 0, kind, 0.0, 0.1 * kind);
        EXPECT_EQ(mesh.faces2D[0].fl, 0.1 * kind);
    }
}

TEST_F(BoundaryAssignment, UsesTheReferenceVelocityOfTheMoment) {
    caseSettings.U0 = 0.0;
    assignBoundary2D(0, 1, 1.0, 0.0, 0, 0, 0.0, 0.0);
    caseSettings.U0 = 0.5;
    EXPECT_EQ(mesh.faces2D[0].u, 0.0);
}

TEST_F(BoundaryAssignment, ChangesNothingForAnEmptyRange) {
    for (const auto& [first, end] : {std::pair{3, 3}, {4, 2}, {0, -1}}) {
        assignBoundary2D(first, end, 1.0, 1.0, 1, 1, 1.0, 1.0);
        assignBoundary3D(first, end, 1.0, 1.0, 1.0, 1, 1, 1.0);
    }
    for (std::size_t i = 0; i < faceCount; ++i) {
        EXPECT_EQ(mesh.faces2D[i].rho, -5.0);
        EXPECT_EQ(mesh.faces3D[i].rho, -5.0);
    }
}

TEST_F(BoundaryAssignment, StaysInsideTheRecordsOfTheMesh) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    assignBoundary2D(-7, most, 1.0, 0.0, 0, 0, 0.0, 0.0);
    EXPECT_EQ(mesh.faces2D[0].u, 0.5);
    EXPECT_EQ(mesh.faces2D[faceCount - 1].u, 0.5);
    mesh.clear();
    assignBoundary2D(0, 4, 1.0, 0.0, 0, 0, 0.0, 0.0);
    assignBoundary3D(0, 4, 1.0, 0.0, 0.0, 0, 0, 0.0);
    EXPECT_TRUE(mesh.faces2D.empty());
}

} // namespace
} // namespace fluvane
