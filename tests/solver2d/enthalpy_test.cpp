// The enthalpy relation: continuity, inverses and the branches at the bounds.
#include "solver2d/enthalpy.h"

#include "dialogs/case_settings.h"
#include "support/mesh_builder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace fluvane;

namespace {

class Enthalpy : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        caseSettings.dT = 1.0;
        setPhaseChange(0.1, 0.2, 0.4, 0.0);
    }
    void TearDown() override { support::resetProcessState(); }
};

} // namespace

TEST_F(Enthalpy, IsZeroAtTheSolidusAndTheLatentHeatHigherAtTheLiquidus) {
    const CaseSettings& s = caseSettings;
    EXPECT_NEAR(enthalpyOf(s.Tm - s.dTm), s.Hsolidus, 1e-12);
    EXPECT_NEAR(enthalpyOf(s.Tm + s.dTm), s.Hliquidus, 1e-11);
    EXPECT_NEAR(s.Hliquidus, 10.0002, 1e-12);
}

TEST_F(Enthalpy, IsContinuousAtBothEndsOfTheMushyRange) {
    const double solidus = caseSettings.Tm - caseSettings.dTm, liquidus = caseSettings.Tm + caseSettings.dTm;
    const double tiny = 1e-13;
    EXPECT_NEAR(enthalpyOf(solidus - tiny), enthalpyOf(solidus + tiny), 1e-7);
    EXPECT_NEAR(enthalpyOf(liquidus - tiny), enthalpyOf(liquidus + tiny), 1e-7);
}

TEST_F(Enthalpy, TemperatureIsTheInverseWithUnequalSpecificHeats) {
    caseSettings.cpSolid = 0.5;
    caseSettings.cpLiquid = 2.0;
    setPhaseChange(0.1, 0.2, 0.4, 0.0);
    for (const double T : {-1.0, 0.2, 0.29999, 0.3, 0.30005, 0.3001, 0.30015, 0.3002, 0.31, 2.0})
        EXPECT_NEAR(temperatureOf(enthalpyOf(T)), T, 1e-13) << T;
}

TEST_F(Enthalpy, LiquidFractionRunsFromZeroToOneAcrossTheRange) {
    const CaseSettings& s = caseSettings;
    EXPECT_EQ(liquidFraction(s.Hsolidus - 1e-9), 0.0);
    EXPECT_EQ(liquidFraction(s.Hsolidus), 0.0);
    EXPECT_NEAR(liquidFraction(0.5 * (s.Hsolidus + s.Hliquidus)), 0.5, 1e-15);
    EXPECT_EQ(liquidFraction(s.Hliquidus), 1.0);
    EXPECT_EQ(liquidFraction(s.Hliquidus + 1.0), 1.0);
}

TEST_F(Enthalpy, BoundsBelongToTheLinearBranch) {
    // With equal bounds the linear branch divides 0 by 0: only a value exactly at the bound shows it.
    caseSettings.Hliquidus = caseSettings.Hsolidus = 0.0;
    EXPECT_TRUE(std::isnan(liquidFraction(0.0)));
    EXPECT_EQ(liquidFraction(1e-300), 1.0);
    EXPECT_EQ(liquidFraction(-1e-300), 0.0);
}

TEST_F(Enthalpy, DeliberateTheInitialStateIsSolidAtTheSolidusWithTheDefaults) {
    setPhaseChange(1.0, 0.0, 0.0, 0.0);
    EXPECT_NEAR(enthalpyOf(0.0), 0.0, 1e-12);
    EXPECT_LT(liquidFraction(enthalpyOf(0.0)), 1e-9);
}

TEST_F(Enthalpy, NotANumberStaysNotANumber) {
    EXPECT_TRUE(std::isnan(enthalpyOf(NAN)));
    EXPECT_TRUE(std::isnan(temperatureOf(NAN)));
}
