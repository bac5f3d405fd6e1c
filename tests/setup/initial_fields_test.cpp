// Initial fields: parameters from the physics inputs, and the uniform state.
#include "setup/initial_fields.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "solver2d/enthalpy.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <tuple>
#include <utility>
#include <vector>

namespace fluvane {
namespace {

constexpr double RT = 1.0 / 3.0;

/// What the physics dialog passes, with a forced-flow case that every test varies.
struct Inputs {
    double L = 2.0, Ma = 0.1, Pr = 0.71, ReOrRa = 100.0, dT = 4.0;
    int flowKind = 0, heat = 1, scaleKind = 0, phase = 0, time = 0;
    void apply() const { initialiseFields(L, Ma, Pr, ReOrRa, dT, flowKind, heat, scaleKind, phase, time); }
};

class InitialFields : public ::testing::Test {
protected:
    void SetUp() override {
        resetAll();
        setTerminalSink([](const QString&) {});
        setVelocities();
        caseSettings.RT = RT;
        caseSettings.soundSpeed = std::sqrt(RT);
        caseSettings.CFL = 0.8;
        mesh.allocateFaces2D(3);
        mesh.zoneCount = 1;
        mesh.zoneLastFace[0] = 3;
        const double lengths[] = {0.5, 0.25, 0.75};
        for (std::size_t i = 0; i < 3; ++i)
            mesh.faces2D[i].length = lengths[i];
        mesh.allocateCells2D(5);
    }
    void TearDown() override {
        resetAll();
        setTerminalSink({});
    }

    static void setVelocities() {
        velocitySet.velocityCount = 9;
        const double x[] = {0, 1, 0, -1, 0, 1, -1, -1, 1};
        const double y[] = {0, 0, 1, 0, -1, 1, 1, -1, -1};
        for (std::size_t k = 0; k < 9; ++k) {
            velocitySet.xi2D[k] = {x[k], y[k]};
            velocitySet.xi3D[k] = {x[k], y[k], 0.5};
            velocitySet.weights[k] = k == 0 ? 4.0 / 9.0 : k < 5 ? 1.0 / 9.0 : 1.0 / 36.0;
        }
    }

    /// Three tetrahedra's worth of 3D records with arrays of 9 entries.
    static void make3D() {
        mesh.clear();
        caseSettings.is3D = true;
        mesh.recordVelocityCount = 9;
        mesh.cellCount = 3;
        mesh.cells3D = HugeArray<CellRecord3D>(3);
        mesh.cellPools.fTilde = HugeArray<double>(27);
        mesh.cellPools.gTilde = HugeArray<double>(27);
        mesh.faces3D = HugeArray<FaceRecord3D>(3);
        mesh.zoneCount = 1;
        mesh.zoneLastFace[0] = 2;
        mesh.faces3D[0].area = 0.5;
        mesh.faces3D[1].area = 0.125;
        mesh.faces3D[2].area = 0.001; // beyond the last zone
    }

    static void stirCells2D() {
        for (CellRecord& cell : mesh.cells2D) {
            cell.rho = cell.u = cell.v = cell.T = cell.H = 7.0;
            cell.Fx = cell.Fy = cell.uPrev = cell.vPrev = cell.TPrev = 7.0;
            std::fill_n(cell.fTilde.data(), 9, 7.0);
            std::fill_n(cell.gTilde.data(), 9, 7.0);
        }
    }

    const CaseSettings& s = caseSettings;

private:
    static void resetAll() {
        caseSettings = CaseSettings{};
        velocitySet = VelocitySet{};
        mesh.clear();
        takeProblems();
    }
};

TEST_F(InitialFields, StoresScalesAndDerivesTheReferenceVelocity) {
    Inputs().apply();
    EXPECT_EQ(s.L, 2.0);
    EXPECT_EQ(s.Ma, 0.1);
    EXPECT_EQ(s.Pr, 0.71);
    EXPECT_EQ(s.U0, std::sqrt(RT) * 0.1);
}

TEST_F(InitialFields, ForcedFlowTakesTheViscosityFromTheReynoldsNumber) {
    caseSettings.buoyancyOn = true;
    caseSettings.Ra = 5.0;
    Inputs().apply();
    EXPECT_EQ(s.flowOn, 1);
    EXPECT_FALSE(s.buoyancyOn);
    EXPECT_EQ(s.Re, 100.0);
    EXPECT_EQ(s.Ra, 5.0);
    EXPECT_DOUBLE_EQ(s.niu, s.U0 * 2.0 / 100.0);
    EXPECT_DOUBLE_EQ(s.tauF, s.niu * 3.0);
    EXPECT_DOUBLE_EQ(s.alpha, s.niu / 0.71);
    EXPECT_DOUBLE_EQ(s.tauG, s.alpha * 3.0);
}

TEST_F(InitialFields, NaturalConvectionWithATemperatureDifference) {
    Inputs in;
    in.flowKind = 1;
    in.ReOrRa = 1e5;
    in.apply();
    EXPECT_EQ(s.flowOn, 1);
    EXPECT_TRUE(s.buoyancyOn);
    EXPECT_EQ(s.Ra, 1e5);
    EXPECT_EQ(s.Re, 0.0);
    EXPECT_DOUBLE_EQ(s.buoyancyCoeff, s.U0 * s.U0 / 8.0);
    EXPECT_DOUBLE_EQ(s.alpha, std::sqrt(s.U0 * s.U0 / 8.0 * 4.0 * 8.0 / 0.71 / 1e5));
    // The definitions: Ra = coeff dT L^3 / (niu alpha), Pr = niu / alpha.
    EXPECT_NEAR(s.buoyancyCoeff * 4.0 * 8.0 / (s.niu * s.alpha), 1e5, 1e-6);
    EXPECT_DOUBLE_EQ(s.niu / s.alpha, 0.71);
    EXPECT_DOUBLE_EQ(s.tauF, s.niu * 3.0);
    EXPECT_DOUBLE_EQ(s.tauG, s.alpha * 3.0);
}

TEST_F(InitialFields, NaturalConvectionWithAHeatFlux) {
    Inputs in;
    in.flowKind = 1;
    in.scaleKind = 1;
    in.ReOrRa = 1e5;
    in.apply();
    EXPECT_DOUBLE_EQ(s.alpha, std::sqrt(s.U0 * s.U0 * 4.0 / 1e5 / 0.71));
    EXPECT_DOUBLE_EQ(s.buoyancyCoeff, s.U0 * s.U0 * s.alpha / 16.0);
    EXPECT_EQ(s.heatSource, 0.0);
    EXPECT_DOUBLE_EQ(s.niu, s.alpha * 0.71);
}

// Deliberate: driven by a heat source, natural convection takes diffusivity and buoyancy coefficient from the
// previous set-up.
TEST_F(InitialFields, NaturalConvectionWithAHeatSourceKeepsDiffusivityAndBuoyancyCoefficient) {
    caseSettings.alpha = 0.125;
    caseSettings.buoyancyCoeff = 0.375;
    Inputs in;
    in.flowKind = 1;
    in.scaleKind = 2;
    in.apply();
    EXPECT_EQ(s.alpha, 0.125);
    EXPECT_EQ(s.buoyancyCoeff, 0.375);
    EXPECT_EQ(s.heatSource, 4.0);
    EXPECT_DOUBLE_EQ(s.tauG, 0.375);
    EXPECT_DOUBLE_EQ(s.niu, 0.125 * 0.71);
    EXPECT_DOUBLE_EQ(s.tauF, s.niu * 3.0);
}

TEST_F(InitialFields, ConductionTakesTheDiffusivityFromThePrandtlBoxAndKeepsTheViscosity) {
    Inputs in;
    in.flowKind = 2;
    in.Pr = 0.3;
    in.apply();
    EXPECT_EQ(s.flowOn, 0);
    EXPECT_EQ(s.alpha, 0.3);
    EXPECT_DOUBLE_EQ(s.tauG, 0.9);
    EXPECT_EQ(s.niu, 0.0);
    EXPECT_EQ(s.tauF, 0.0);
    Inputs().apply();
    const double niu = s.niu;
    const double tauF = s.tauF;
    in.apply();
    EXPECT_EQ(s.niu, niu);
    EXPECT_EQ(s.tauF, tauF);
    EXPECT_EQ(s.Pr, 0.3);
}

TEST_F(InitialFields, AnyOtherFlowKindChangesNoCoefficient) {
    Inputs in;
    in.apply();
    const double niu = s.niu;
    const double alpha = s.alpha;
    in.flowKind = 3;
    in.ReOrRa = 1.0;
    in.Pr = 9.0;
    in.apply();
    EXPECT_EQ(s.niu, niu);
    EXPECT_EQ(s.alpha, alpha);
    EXPECT_EQ(s.Re, 100.0);
    EXPECT_EQ(s.flowOn, 1);
    EXPECT_EQ(s.Pr, 9.0);
}

// Deliberate: the thermal scale stays in force for the natural-convection formulas.
TEST_F(InitialFields, WithoutHeatTransferTheThermalScaleOfTheEarlierCallStaysInForce) {
    Inputs in;
    in.scaleKind = 2;
    in.apply();
    in.heat = 0;
    in.dT = 99.0;
    in.scaleKind = 1;
    in.apply();
    EXPECT_FALSE(s.heatOn);
    EXPECT_EQ(s.dT, 4.0);
    EXPECT_EQ(s.thermalScaleKind, 2);
    EXPECT_EQ(s.heatSource, 4.0);
    in.heat = 1;
    in.scaleKind = 1;
    in.apply();
    in.heat = 0;
    in.scaleKind = 0;
    in.flowKind = 1;
    in.apply();
    EXPECT_DOUBLE_EQ(s.buoyancyCoeff, s.U0 * s.U0 * s.alpha / 99.0 / 2.0 / 2.0);
}

TEST_F(InitialFields, HeatSourceIsZeroUnlessTheScaleIsASource) {
    Inputs in;
    for (const auto& [kind, source] : {std::pair{2, 4.0}, {0, 0.0}, {2, 4.0}, {1, 0.0}}) {
        in.scaleKind = kind;
        in.apply();
        EXPECT_EQ(s.heatSource, source);
        EXPECT_EQ(s.thermalScaleKind, kind);
    }
    in.heat = 5;
    in.apply();
    EXPECT_TRUE(s.heatOn);
}

TEST_F(InitialFields, PhaseChoiceSetsFormAndVariant) {
    Inputs in;
    for (const auto& [phase, mode, lftf] :
         {std::tuple{1, 1, false}, {2, 1, true}, {0, 0, false}, {2, 1, true}, {3, 1, true}, {-1, 1, true}}) {
        in.phase = phase;
        in.apply();
        EXPECT_EQ(s.thermalMode, mode) << phase;
        EXPECT_EQ(s.lftfOn, lftf) << phase;
    }
}

TEST_F(InitialFields, TimeChoiceSetsTheSteadyFlagAndOtherValuesLeaveIt) {
    Inputs in;
    for (const auto& [time, steady] : {std::pair{0, true}, {2, true}, {1, false}, {-1, false}}) {
        in.time = time;
        in.apply();
        EXPECT_EQ(s.steadyState, steady) << time;
    }
}

TEST_F(InitialFields, SpacingIsTheSmallestFaceAndTheTimeStepFollows) {
    Inputs().apply();
    EXPECT_EQ(s.dx, 0.25);
    EXPECT_DOUBLE_EQ(s.dt, 0.8 * 0.25 / (s.soundSpeed + s.U0));
}

// Deliberate: flowOn is never 2, so the diffusive limit is never chosen; the rule is kept beside the one in
// use.
TEST_F(InitialFields, TheTimeStepTakesTheDiffusiveLimitOnlyForFlowSwitchTwo) {
    caseSettings.flowOn = 2;
    caseSettings.alpha = 0.5;
    Inputs in;
    in.flowKind = 3;
    in.apply();
    EXPECT_EQ(s.flowOn, 2);
    EXPECT_DOUBLE_EQ(s.dt, 0.8 * 0.25 / (0.5 / 0.25 + s.soundSpeed));
    in.flowKind = 2;
    in.apply();
    EXPECT_DOUBLE_EQ(s.dt, 0.8 * 0.25 / (s.soundSpeed + s.U0));
}

TEST_F(InitialFields, AnEmptyMeshGivesTheLargestSpacing) {
    mesh.clear();
    Inputs().apply();
    EXPECT_EQ(s.dx, 10000.0);
    EXPECT_TRUE(takeProblems().isEmpty()) << "no record, no complaint";
    make3D();
    mesh.clear();
    Inputs().apply();
    EXPECT_EQ(s.dx, 10000.0);
}

TEST_F(InitialFields, AMeshOfTheOtherDimensionCountsAsEmpty) {
    caseSettings.is3D = true;
    Inputs().apply();
    EXPECT_EQ(s.dx, 10000.0);
    make3D();
    caseSettings.is3D = false;
    mesh.cells3D[0].rho = 7.0;
    Inputs().apply();
    EXPECT_EQ(s.dx, 10000.0);
    EXPECT_EQ(mesh.cells3D[0].rho, 7.0);
}

TEST_F(InitialFields, AMeshWithFacesButNoCellsStillHasItsSpacing) {
    mesh.cells2D = {};
    mesh.cellCount = 0;
    Inputs().apply();
    EXPECT_EQ(s.dx, 0.25);
}

TEST_F(InitialFields, ZeroReynoldsNumberGivesAnInfiniteViscosity) {
    Inputs in;
    in.ReOrRa = 0.0;
    in.apply();
    EXPECT_TRUE(std::isinf(s.niu));
    in.flowKind = 1;
    in.ReOrRa = -1.0;
    in.apply();
    EXPECT_TRUE(std::isnan(s.alpha));
}

TEST_F(InitialFields, EveryCellIsAtRestInEquilibrium) {
    stirCells2D();
    Inputs().apply();
    for (const CellRecord& cell : mesh.cells2D) {
        EXPECT_EQ(cell.rho, 1.0);
        EXPECT_EQ(cell.u, 0.0);
        EXPECT_EQ(cell.v, 0.0);
        EXPECT_EQ(cell.T, 0.0);
        for (std::size_t k = 0; k < 9; ++k) {
            EXPECT_EQ(cell.fTilde[k], velocitySet.weights[k]);
            EXPECT_EQ(cell.gTilde[k], 0.0);
        }
    }
}

TEST_F(InitialFields, LeavesForcesPreviousValuesAndInTheTemperatureFormTheEnthalpy) {
    stirCells2D();
    Inputs().apply();
    for (const CellRecord& cell : mesh.cells2D)
        for (const double kept : {cell.H, cell.Fx, cell.Fy, cell.uPrev, cell.vPrev, cell.TPrev})
            EXPECT_EQ(kept, 7.0);
}

// Deliberate: whatever initial liquid fraction was typed.
TEST_F(InitialFields, EnthalpyFollowsFromZeroTemperatureWhateverLiquidFractionWasTyped) {
    for (const double typed : {0.0, 1.0}) {
        setPhaseChange(0.1, 0.5, 0.7, typed);
        for (const int phase : {1, 2}) {
            Inputs in;
            in.phase = phase;
            stirCells2D();
            in.apply();
            const double H0 = enthalpyOf(0.0);
            ASSERT_LT(H0, 0.0);
            for (const CellRecord& cell : mesh.cells2D) {
                EXPECT_EQ(cell.H, H0);
                if (phase == 1) {
                    EXPECT_DOUBLE_EQ(cell.gTilde[0], H0);
                    EXPECT_EQ(cell.gTilde[1], 0.0);
                }
                double sum = 0.0;
                for (std::size_t k = 0; k < 9; ++k)
                    sum += cell.gTilde[k];
                EXPECT_NEAR(sum, H0, 1e-14) << "the distribution carries the enthalpy";
            }
        }
    }
}

// Deliberate: whatever initial liquid fraction was typed.
TEST_F(InitialFields, ResetAfterThePhaseChangeSetUpStartsFromTheEnthalpyOfZeroTemperature) {
    Inputs in;
    in.phase = 1;
    in.apply();
    setPhaseChange(0.1, 0.5, 0.7, 0.75);
    resetFields2D();
    ASSERT_EQ(s.Fl0, 0.75);
    EXPECT_NEAR(mesh.cells2D[2].H, -0.6, 1e-12) << "as cold as the solidus is above 0";
    EXPECT_EQ(mesh.cells2D[2].T, 0.0);
}

// The latent heat is of the physics that were confirmed before it.
TEST_F(InitialFields, NewPhysicsLeaveThePhaseChangeAsItWasSetUp) {
    Inputs in;
    in.phase = 1;
    in.apply();
    setPhaseChange(0.5, 0.1, 0.1, 0.0);
    ASSERT_EQ(s.latentHeat, 8.0);
    in.dT = 1.0;
    in.apply();
    EXPECT_EQ(s.latentHeat, 8.0);
    EXPECT_EQ(s.Hliquidus, 2.0 * 0.0001 + 8.0);
    EXPECT_EQ(s.Tm, 0.1 + 0.0001);
}

TEST_F(InitialFields, ResetRestoresTheFieldsAndLeavesTheParameters) {
    Inputs().apply();
    const double niu = s.niu;
    const double dt = s.dt;
    stirCells2D();
    mesh.faces2D[0].length = 0.01;
    resetFields2D();
    EXPECT_EQ(mesh.cells2D[4].T, 0.0);
    EXPECT_EQ(mesh.cells2D[4].fTilde[8], 1.0 / 36.0);
    EXPECT_EQ(s.niu, niu);
    EXPECT_EQ(s.dt, dt);
}

TEST_F(InitialFields, ResetGivesTheSameBitsForEveryThreadCount) {
    caseSettings.thermalMode = 1;
    caseSettings.lftfOn = true;
    caseSettings.cpSolid = 0.7;
    caseSettings.Tm = 0.3;
    const int before = omp_get_max_threads();
    omp_set_num_threads(1);
    resetFields2D();
    const std::vector<double> first(mesh.cellPools.gTilde.begin(), mesh.cellPools.gTilde.end());
    stirCells2D();
    omp_set_num_threads(7);
    resetFields2D();
    omp_set_num_threads(before);
    EXPECT_EQ(std::vector<double>(mesh.cellPools.gTilde.begin(), mesh.cellPools.gTilde.end()), first);
}

TEST_F(InitialFields, CellsIn3DStartInTheTemperatureFormEvenWithPhaseChange) {
    make3D();
    setPhaseChange(0.1, 0.5, 0.7, 0.0);
    for (CellRecord3D& cell : mesh.cells3D) {
        cell.rho = cell.u = cell.v = cell.w = cell.T = cell.H = cell.Fz = 7.0;
        std::fill_n(cell.fTilde.data(), 9, 7.0);
        std::fill_n(cell.gTilde.data(), 9, 7.0);
    }
    Inputs in;
    in.phase = 1;
    in.apply();
    EXPECT_EQ(s.thermalMode, 1);
    for (const CellRecord3D& cell : mesh.cells3D) {
        EXPECT_EQ(cell.rho, 1.0);
        EXPECT_EQ(cell.u, 0.0);
        EXPECT_EQ(cell.v, 0.0);
        EXPECT_EQ(cell.w, 0.0);
        EXPECT_EQ(cell.T, 0.0);
        EXPECT_EQ(cell.H, 7.0) << "never set in 3D";
        EXPECT_EQ(cell.Fz, 7.0);
        for (std::size_t k = 0; k < 9; ++k) {
            EXPECT_EQ(cell.fTilde[k], velocitySet.weights[k]);
            EXPECT_EQ(cell.gTilde[k], 0.0);
        }
    }
}

TEST_F(InitialFields, SpacingIn3DIsTheSmallestAreaOfTheCountedFaces) {
    make3D();
    Inputs().apply();
    EXPECT_EQ(s.dx, 0.125);
    EXPECT_DOUBLE_EQ(s.dt, 0.8 * 0.125 / (s.soundSpeed + s.U0));
    mesh.faces3D[1].area = 0.0; // a quadrilateral seen edge-on
    Inputs().apply();
    EXPECT_EQ(s.dt, 0.0);
}

TEST_F(InitialFields, RefusesRecordsOfAnotherVelocitySetAndChangesNothing) {
    Inputs().apply();
    const double U0 = s.U0;
    stirCells2D();
    for (const std::int32_t count : {5, 19, -1, 0}) {
        velocitySet.velocityCount = count;
        Inputs in;
        in.Ma = 0.3;
        in.time = 1;
        in.apply();
        resetFields2D();
        EXPECT_EQ(takeProblems().size(), 2) << count;
        EXPECT_EQ(s.U0, U0);
        EXPECT_TRUE(s.steadyState);
        EXPECT_EQ(mesh.cells2D[4].rho, 7.0);
        EXPECT_EQ(mesh.cells2D[4].fTilde[8], 7.0);
    }
    make3D();
    mesh.cells3D[2].rho = 7.0;
    resetFields3D();
    EXPECT_EQ(takeProblems().size(), 1);
    EXPECT_EQ(mesh.cells3D[2].rho, 7.0);
}

TEST_F(InitialFields, NamesBothVelocityCountsWhenItRefuses) {
    velocitySet.velocityCount = 19;
    resetFields2D();
    const QStringList problems = takeProblems();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems[0].contains("9 velocities") && problems[0].contains("19"))
        << problems[0].toStdString();
}

TEST_F(InitialFields, EachCallStartsFromItsOwnInputs) {
    Inputs other;
    other.Ma = 0.3;
    other.ReOrRa = 5.0;
    other.apply();
    Inputs().apply();
    const CaseSettings once = caseSettings;
    Inputs().apply();
    EXPECT_EQ(s.niu, once.niu);
    EXPECT_EQ(s.U0, once.U0);
    EXPECT_EQ(s.dt, once.dt);
}

} // namespace
} // namespace fluvane
