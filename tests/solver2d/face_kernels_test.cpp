// The face kernels on a single record: upwinding, walls, outflow, thermal conditions.
#include "solver2d/face_kernels.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/cell_kernels.h"
#include "solver2d/enthalpy.h"
#include "solver2d/equilibrium.h"
#include "support/mesh_builder.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fluvane;

namespace {

class FaceKernels : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::rectangles(4, 4), 4, support::sidesOfBox());
        support::usePlainSettings(0.01);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        support::fillRandomState(21);
        for (CellRecord& c : mesh.cells2D)
            collideCell(c);
        for (CellRecord& c : mesh.cells2D)
            computeCellGradients(c);
    }
    void TearDown() override { support::resetProcessState(); }

    /// The first face of a side: left, right, bottom, top = 0 .. 3.
    static FaceRecord& wall(std::size_t zone) {
        const std::int32_t first = zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[zone - 1];
        return mesh.faces2D[static_cast<std::size_t>(first + 1)];
    }
    static const CellRecord& cellOf(const FaceRecord& face) {
        return mesh.cells2D[static_cast<std::size_t>(face.c0)];
    }
    static double fromCell(const FaceRecord& face, const CellRecord& c, std::size_t k, const double* bar,
                           const GradientSlice2D& gradient) {
        const Vec2 xi = velocitySet.xi2D[k];
        const double h = caseSettings.dt / 2.0;
        return bar[k] + (face.xf - c.xc - xi.x * h) * gradient[k].x +
               (face.yf - c.yc - xi.y * h) * gradient[k].y;
    }
    static double flowFrom(const FaceRecord& face, const CellRecord& c, std::size_t k) {
        return fromCell(face, c, k, c.fBarPlus, c.gradFBarPlus);
    }
    static double heatFrom(const FaceRecord& face, const CellRecord& c, std::size_t k) {
        return fromCell(face, c, k, c.gBarPlus, c.gradGBarPlus);
    }
    static double sumOf(const double* g) {
        double s = 0.0;
        for (std::size_t k = 0; k < 9; ++k)
            s += g[k];
        return s;
    }
    // In D2Q9 as the tests number it: 1 east, 2 north, 3 west, 4 south, 5 north-east and on round.
    static constexpr std::size_t east = 1, north = 2, west = 3, south = 4;
};

} // namespace

TEST_F(FaceKernels, EachVelocityComesFromItsUpwindCellAndTangentialOnesFromTheFirst) {
    for (std::int32_t i = 0; i < mesh.interiorFaceCount; ++i) {
        FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        const CellRecord& c0 = mesh.cells2D[static_cast<std::size_t>(face.c0)];
        const CellRecord& c1 = mesh.cells2D[static_cast<std::size_t>(face.c1)];
        reconstructInteriorFace(face);
        for (std::size_t k = 0; k < 9; ++k) {
            const double side = velocitySet.xi2D[k].x * face.S0x + velocitySet.xi2D[k].y * face.S0y;
            EXPECT_EQ(face.fFace[k], flowFrom(face, side >= 0.0 ? c0 : c1, k));
            EXPECT_EQ(face.gFace[k], heatFrom(face, side >= 0.0 ? c0 : c1, k));
        }
    }
}

TEST_F(FaceKernels, FaceVelocityTakesAQuarterStepOfTheForceOfTheSameFace) {
    caseSettings.buoyancyOn = true;
    FaceRecord& face = mesh.faces2D[3];
    reconstructInteriorFace(face);
    double rho = 0.0, my = 0.0;
    for (std::size_t k = 0; k < 9; ++k) {
        rho += face.fFace[k];
        my += velocitySet.xi2D[k].y * face.fFace[k];
    }
    EXPECT_EQ(face.Fy, caseSettings.buoyancyCoeff * face.T);
    EXPECT_NEAR(face.v, my / rho + caseSettings.dt / 4.0 * face.Fy, 1e-15);
}

TEST_F(FaceKernels, FlowMomentsOverwriteTheZeroVelocityOfASolidFace) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    for (CellRecord& c : mesh.cells2D)
        for (std::size_t k = 0; k < 9; ++k)
            c.gBarPlus[k] = -0.01;
    FaceRecord& face = mesh.faces2D[3];
    for (const std::uint8_t flow : {std::uint8_t{1}, std::uint8_t{0}}) {
        caseSettings.flowOn = flow;
        face.u = 0.3;
        reconstructInteriorFace(face);
        ASSERT_EQ(liquidFraction(face.H), 0.0);
        EXPECT_EQ(face.u == 0.0, flow == 0);
    }
}

TEST_F(FaceKernels, ZeroDensityGivesANonFiniteVelocityWithoutAGuard) {
    for (CellRecord& c : mesh.cells2D)
        for (std::size_t k = 0; k < 9; ++k)
            c.fBarPlus[k] = c.gradFBarPlus[k].x = c.gradFBarPlus[k].y = 0.0;
    reconstructInteriorFace(mesh.faces2D[0]);
    EXPECT_FALSE(std::isfinite(mesh.faces2D[0].u));
}

TEST_F(FaceKernels, FacesOfCellsWithoutAGradientTakeTheirValuesUnshifted) {
    const auto prepare = [](int nx) {
        support::makeMesh(support::rectangles(nx, 1), 4, support::sidesOfBox());
        support::fillRandomState(2);
        for (CellRecord& c : mesh.cells2D)
            computeCellGradients(c);
    };
    prepare(1); // a cell without a neighbour
    for (FaceRecord& face : mesh.faces2D) {
        face.flowKind = face.thermalKind = 0;
        treatBoundaryFace(face);
        for (std::size_t k = 0; k < 9; ++k) {
            const Vec2 xi = velocitySet.xi2D[k];
            if (!(xi.x * face.S0x + xi.y * face.S0y > 0.0))
                continue; // reflected, or overwritten by its opposite
            EXPECT_EQ(face.fFace[k], cellOf(face).fBarPlus[k]);
            EXPECT_EQ(face.gFace[k], cellOf(face).gBarPlus[k]);
        }
    }
    prepare(2); // one neighbour determines no gradient
    FaceRecord& face = mesh.faces2D[0];
    ASSERT_EQ(mesh.interiorFaceCount, 1);
    reconstructInteriorFace(face);
    for (std::size_t k = 0; k < 9; ++k) {
        const Vec2 xi = velocitySet.xi2D[k];
        const bool first = xi.x * face.S0x + xi.y * face.S0y >= 0.0;
        const CellRecord& upwind = mesh.cells2D[static_cast<std::size_t>(first ? face.c0 : face.c1)];
        EXPECT_EQ(face.fFace[k], upwind.fBarPlus[k]);
        EXPECT_EQ(face.gFace[k], upwind.gBarPlus[k]);
    }
}

TEST_F(FaceKernels, WallReflectsWithItsVelocityAndKeepsIt) {
    FaceRecord& face = wall(3); // top
    face.flowKind = 0;
    face.u = 0.08;
    face.v = 0.0;
    treatBoundaryFace(face);
    const CellRecord& c = cellOf(face);
    EXPECT_EQ(face.rho, c.rho);
    EXPECT_EQ(face.u, 0.08);
    EXPECT_EQ(face.fFace[0], flowFrom(face, c, 0));
    for (const std::size_t k : {std::size_t{2}, std::size_t{5}, std::size_t{6}}) {
        const auto o = static_cast<std::size_t>(velocitySet.opposite[k]);
        EXPECT_EQ(face.fFace[k], flowFrom(face, c, k));
        EXPECT_NEAR(face.fFace[o],
                    face.fFace[k] - 2.0 * velocitySet.weights[k] * face.rho * velocitySet.xi2D[k].x * 0.08 /
                                        caseSettings.RT,
                    1e-16);
    }
}

TEST_F(FaceKernels, DeliberateRotationIsTreatedAsTranslation) {
    FaceRecord& face = wall(3);
    face.u = 0.05;
    face.v = 0.01;
    face.flowKind = 0;
    treatBoundaryFace(face);
    const std::vector<double> translation(face.fFace.data(), face.fFace + 9);
    face.flowKind = 1;
    treatBoundaryFace(face);
    EXPECT_EQ(std::vector<double>(face.fFace.data(), face.fFace + 9), translation);
}

TEST_F(FaceKernels, DeliberateTheLaterVisitOfATangentialPairWins) {
    FaceRecord& face = wall(3); // top: east is visited before west
    face.flowKind = 0;
    face.u = 0.08;
    face.v = 0.0;
    treatBoundaryFace(face);
    const CellRecord& c = cellOf(face);
    EXPECT_EQ(face.fFace[west], flowFrom(face, c, west));
    EXPECT_NEAR(face.fFace[east],
                face.fFace[west] + 2.0 * velocitySet.weights[west] * face.rho * 0.08 / caseSettings.RT,
                1e-16);
}

TEST_F(FaceKernels, OutflowFollowsItsCellAndFillsIncomingVelocitiesWithoutGradient) {
    FaceRecord& face = wall(1); // right
    face.flowKind = 2;
    face.u = 0.3;
    treatBoundaryFace(face);
    const CellRecord& c = cellOf(face);
    EXPECT_EQ(face.u, c.u);
    EXPECT_EQ(face.v, c.v);
    EXPECT_EQ(face.rho, c.rho);
    EXPECT_EQ(face.fFace[east], flowFrom(face, c, east));
    EXPECT_EQ(face.fFace[west], c.fBarPlus[west]);
    EXPECT_EQ(face.fFace[0], c.fBarPlus[0]) << "the rest velocity's value is overwritten";
}

TEST_F(FaceKernels, AdiabaticWallMirrorsHeatAndTakesTheCellsTemperature) {
    FaceRecord& face = wall(0); // left
    face.thermalKind = 0;
    treatBoundaryFace(face);
    const CellRecord& c = cellOf(face);
    EXPECT_EQ(face.T, c.T);
    EXPECT_EQ(face.gFace[west], heatFrom(face, c, west));
    EXPECT_EQ(face.gFace[east], face.gFace[west]);
    EXPECT_EQ(face.gFace[0], heatFrom(face, c, 0));
}

TEST_F(FaceKernels, WallTemperatureIsKeptAndHeatAntiMirrored) {
    FaceRecord& face = wall(0);
    face.thermalKind = 1;
    face.T = 0.75;
    treatBoundaryFace(face);
    EXPECT_EQ(face.T, 0.75);
    EXPECT_EQ(face.gFace[east], 2.0 * velocitySet.weights[west] * 0.75 - face.gFace[west]);
    EXPECT_EQ(face.gFace[0], heatFrom(face, cellOf(face), 0));
}

TEST_F(FaceKernels, WallWithZeroFluxMirrorsLikeAnAdiabaticOneButSumsItsTemperature) {
    FaceRecord& face = wall(0);
    face.thermalKind = 2;
    face.q = 0.0;
    treatBoundaryFace(face);
    const CellRecord& c = cellOf(face);
    EXPECT_EQ(face.gFace[east], face.gFace[west]);
    EXPECT_NE(face.T, c.T);
    // Deliberate: the tangential pair, here north and south, is visited twice and counts twice.
    const double later = face.gFace[south];
    const double expected =
        sumOf(face.gFace) + heatFrom(face, c, north) + heatFrom(face, c, north) - face.gFace[north] + later;
    EXPECT_NEAR(face.T, expected, 1e-14);
}

TEST_F(FaceKernels, FluxEntersThroughTheMirroredVelocities) {
    FaceRecord& face = wall(0);
    face.thermalKind = 2;
    face.q = 0.2;
    treatBoundaryFace(face);
    const double h = caseSettings.dt / 2.0;
    const double added =
        (2.0 * caseSettings.tauG + h) * 0.2 * velocitySet.weights[west] * 1.0 / caseSettings.alpha;
    // Outward is -x: the mirrored velocity, east, has xi.S/|S| = -1, so a positive q heats.
    EXPECT_NEAR(face.gFace[east], face.gFace[west] + added, 1e-15);
}

TEST_F(FaceKernels, WallForceFollowsTheWallTemperatureOnlyWithBuoyancy) {
    FaceRecord& face = wall(0);
    face.thermalKind = 1;
    face.T = 0.5;
    face.Fx = 0.7;
    face.Fy = 0.9;
    treatBoundaryFace(face);
    EXPECT_EQ(face.Fx, 0.7) << "left as it is without buoyancy";
    EXPECT_EQ(face.Fy, 0.9);
    caseSettings.buoyancyOn = true;
    treatBoundaryFace(face);
    EXPECT_EQ(face.Fx, 0.0);
    EXPECT_EQ(face.Fy, caseSettings.buoyancyCoeff * 0.5);
}

TEST_F(FaceKernels, WallsOfEachThermalKindTakeTheirEnthalpyAndTheTemperatureThatBelongsToIt) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    caseSettings.flowOn = 0;
    FaceRecord& face = wall(2);
    mesh.cells2D[static_cast<std::size_t>(face.c0)].H = 0.3;
    face.thermalKind = 0;
    treatBoundaryFace(face);
    EXPECT_EQ(face.H, 0.3);
    EXPECT_EQ(face.T, temperatureOf(0.3));
    face.thermalKind = 1;
    face.T = 0.9;
    treatBoundaryFace(face);
    EXPECT_EQ(face.H, enthalpyOf(0.9));
    EXPECT_NEAR(face.T, 0.9, 1e-14);
    // The anti-mirror uses the wall's temperature, not its enthalpy.
    const double bar = heatFrom(face, cellOf(face), south);
    EXPECT_NEAR(face.gFace[north], 2.0 / 9.0 * 0.9 - bar, 1e-14);
    // A flux sums the enthalpy as it sums the temperature in the other form.
    face.thermalKind = 2;
    face.q = 0.2;
    caseSettings.thermalMode = 0;
    treatBoundaryFace(face);
    const double sum = face.T;
    caseSettings.thermalMode = 1;
    treatBoundaryFace(face);
    EXPECT_EQ(face.H, sum);
    EXPECT_EQ(face.T, temperatureOf(sum));
    EXPECT_GT(std::abs(face.T - sum), 0.01);
}

TEST_F(FaceKernels, WallHalfMeltedKeepsItsVelocityAndOneWithLessLosesIt) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    FaceRecord& face = wall(3);
    face.thermalKind = 0;
    face.u = 0.08;
    mesh.cells2D[static_cast<std::size_t>(face.c0)].H = 0.5 * caseSettings.Hliquidus;
    treatBoundaryFace(face);
    EXPECT_EQ(face.u, 0.08);
    mesh.cells2D[static_cast<std::size_t>(face.c0)].H = 0.4999 * caseSettings.Hliquidus;
    treatBoundaryFace(face);
    EXPECT_EQ(face.u, 0.0);
}

TEST_F(FaceKernels, DeliberateIceReplacesTheWallVelocityByZeroForGood) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    FaceRecord& face = wall(3);
    face.thermalKind = 1;
    face.T = 0.1; // below the melting range
    face.u = 0.08;
    face.v = 0.02;
    treatBoundaryFace(face);
    EXPECT_EQ(face.H, enthalpyOf(0.1));
    EXPECT_EQ(face.u, 0.0);
    EXPECT_EQ(face.v, 0.0);
    face.T = 0.9;
    treatBoundaryFace(face);
    EXPECT_EQ(face.u, 0.0) << "it does not come back when the wall melts";
}

TEST_F(FaceKernels, LftfLeavesTheWallVelocityOfIceAlone) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.thermalMode = 1;
    caseSettings.lftfOn = true;
    FaceRecord& face = wall(3);
    face.thermalKind = 1;
    face.T = 0.1;
    face.u = 0.08;
    treatBoundaryFace(face);
    EXPECT_EQ(face.u, 0.08);
}

TEST_F(FaceKernels, DeliberateHeatRecoveryUsesTheTemperatureFormInBothThermalModes) {
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    for (const int mode : {0, 1}) {
        caseSettings.thermalMode = mode;
        FaceRecord& face = mesh.faces2D[2];
        reconstructInteriorFace(face);
        const std::vector<double> bar(face.gFace.data(), face.gFace + 9);
        recoverFaceDistributions(face);
        const double h = caseSettings.dt / 2.0, tau = caseSettings.tauG;
        for (int k = 0; k < 9; ++k) {
            const auto j = static_cast<std::size_t>(k);
            const double expected =
                (2.0 * tau * bar[j] + h * geqT(k, face.T, face.u, face.v)) / (2.0 * tau + h);
            EXPECT_NEAR(face.gFace[j], expected, 1e-14) << "mode " << mode << ", k " << k;
        }
    }
}
