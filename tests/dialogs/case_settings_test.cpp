// Case settings: start-up values and the constants of the enthalpy relation.
#include "dialogs/case_settings.h"

#include <cmath>
#include <gtest/gtest.h>

namespace fluvane {
namespace {

class CaseSettingsTest : public ::testing::Test {
protected:
    void SetUp() override { caseSettings = CaseSettings{}; }
    void TearDown() override { caseSettings = CaseSettings{}; }
    CaseSettings& s = caseSettings;
};

TEST_F(CaseSettingsTest, SixScalesStartAtOne) {
    for (const double value : {s.U0, s.L, s.dT, s.Ste, s.cpLiquid, s.cpSolid})
        EXPECT_EQ(value, 1.0);
}

TEST_F(CaseSettingsTest, EverythingElseStartsAtZero) {
    for (const bool flag : {s.is3D, s.meshLoaded, s.latticeInitialised, s.boundaryInitialised, s.steadyState,
                            s.heatOn, s.buoyancyOn, s.lftfOn})
        EXPECT_FALSE(flag);
    for (const double value : {s.Ma,         s.Pr,       s.Re,       s.Ra,         s.heatSource,
                               s.niu,        s.alpha,    s.tauF,     s.tauG,       s.buoyancyCoeff,
                               s.dx,         s.dt,       s.RT,       s.soundSpeed, s.CFL,
                               s.Ts,         s.Tl,       s.Fl0,      s.Tm,         s.dTm,
                               s.latentHeat, s.Hsolidus, s.Hliquidus})
        EXPECT_EQ(value, 0.0);
    EXPECT_EQ(s.flowOn, 0);
    EXPECT_EQ(s.thermalScaleKind, 0);
    EXPECT_EQ(s.thermalMode, 0);
}

TEST_F(CaseSettingsTest, ABoundaryConditionStartsAsAnAdiabaticWallAtRest) {
    const BoundaryCondition condition;
    EXPECT_EQ(condition.flowKind, 0);
    EXPECT_EQ(condition.thermalKind, 0);
    for (const double value : {condition.ux, condition.uy, condition.uz, condition.T, condition.fl})
        EXPECT_EQ(value, 0.0);
}

TEST_F(CaseSettingsTest, MeltingTemperatureIsOffsetByTheHalfWidth) {
    setPhaseChange(0.5, 0.0, 0.0, 0.25);
    EXPECT_EQ(s.Tm, 0.0001);
    EXPECT_EQ(s.dTm, 0.0001);
    EXPECT_EQ(s.Ste, 0.5);
    EXPECT_EQ(s.Fl0, 0.25);
    EXPECT_EQ(s.Hsolidus, 0.0);
}

// Deliberate: the mushy range is always two times 0.0001 wide and begins at (Ts + Tl) / 2, whatever Ts and Tl
// are.
TEST_F(CaseSettingsTest, MushyRangeIsNotTheRangeThatWasTyped) {
    setPhaseChange(1.0, 0.2, 0.6, 0.0);
    EXPECT_EQ(s.Ts, 0.2);
    EXPECT_EQ(s.Tl, 0.6);
    EXPECT_EQ(s.dTm, 0.0001);
    EXPECT_DOUBLE_EQ(s.Tm, 0.4 + 0.0001);
    EXPECT_NEAR(s.Tm - s.dTm, 0.4, 1e-15);
    setPhaseChange(1.0, 9.0, -1.0, 0.0);
    EXPECT_DOUBLE_EQ(s.Tm, 4.0 + 0.0001);
}

TEST_F(CaseSettingsTest, LatentHeatOfATemperatureDifference) {
    s.dT = 3.0;
    s.cpLiquid = 2.0;
    s.cpSolid = 4.0;
    setPhaseChange(0.5, 0.0, 0.0, 0.0);
    EXPECT_EQ(s.latentHeat, 6.0);
    EXPECT_DOUBLE_EQ(s.Hliquidus, 6.0 * 0.0001 + 6.0);
}

TEST_F(CaseSettingsTest, LatentHeatOfAHeatFlux) {
    s.thermalScaleKind = 1;
    s.dT = 3.0;
    s.L = 2.0;
    s.alpha = 0.25;
    setPhaseChange(0.5, 0.0, 0.0, 0.0);
    EXPECT_DOUBLE_EQ(s.latentHeat, 2.0 * 3.0 / 0.5 / 0.25);
    EXPECT_DOUBLE_EQ(s.Hliquidus, 2.0 * 0.0001 + s.latentHeat);
}

// Deliberate: with a heat source as thermal scale the latent heat keeps its previous value.
TEST_F(CaseSettingsTest, LatentHeatIsKeptWithAHeatSource) {
    s.thermalScaleKind = 2;
    setPhaseChange(0.5, 0.0, 0.0, 0.0);
    EXPECT_EQ(s.latentHeat, 0.0);
    EXPECT_DOUBLE_EQ(s.Hliquidus, 0.0002);
    s.latentHeat = 5.0;
    setPhaseChange(0.25, 0.0, 0.0, 0.0);
    EXPECT_EQ(s.latentHeat, 5.0);
    EXPECT_DOUBLE_EQ(s.Hliquidus, 5.0002);
}

TEST_F(CaseSettingsTest, NothingIsValidated) {
    setPhaseChange(0.0, -3.0, -9.0, 7.0);
    EXPECT_TRUE(std::isinf(s.latentHeat));
    EXPECT_EQ(s.Fl0, 7.0);
    EXPECT_EQ(s.Ts, -3.0);
}

} // namespace
} // namespace fluvane
