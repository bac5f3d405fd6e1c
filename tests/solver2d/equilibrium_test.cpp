// Moments of the equilibria, the forcing and the heat source.
#include "solver2d/equilibrium.h"

#include "dialogs/case_settings.h"
#include "support/mesh_builder.h"
#include "velocity/velocity_set.h"

#include <gtest/gtest.h>

using namespace fluvane;

namespace {

class Equilibrium : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        support::useD2Q9();
        caseSettings.RT = 1.0 / 3.0;
    }
    void TearDown() override { support::resetProcessState(); }

    template <class Term>
    static Vec3 moments(Term term) {
        Vec3 m;
        for (int k = 0; k < velocitySet.velocityCount; ++k) {
            const Vec2 xi = velocitySet.xi2D[static_cast<std::size_t>(k)];
            m.x += term(k);
            m.y += xi.x * term(k);
            m.z += xi.y * term(k);
        }
        return m;
    }
    static constexpr double rho = 1.1, u = 0.07, v = -0.04;
};

} // namespace

TEST_F(Equilibrium, FlowCarriesDensityAndMomentum) {
    const Vec3 m = moments([](int k) { return feq(k, rho, u, v); });
    EXPECT_NEAR(m.x, rho, 1e-15);
    EXPECT_NEAR(m.y, rho * u, 1e-15);
    EXPECT_NEAR(m.z, rho * v, 1e-15);
}

TEST_F(Equilibrium, FlowCarriesTheMomentumFlux) {
    double xx = 0.0, xy = 0.0;
    for (int k = 0; k < 9; ++k) {
        const Vec2 xi = velocitySet.xi2D[static_cast<std::size_t>(k)];
        xx += xi.x * xi.x * feq(k, rho, u, v);
        xy += xi.x * xi.y * feq(k, rho, u, v);
    }
    EXPECT_NEAR(xx, rho * (caseSettings.RT + u * u), 1e-15);
    EXPECT_NEAR(xy, rho * u * v, 1e-15);
}

TEST_F(Equilibrium, AtRestEachVelocityHoldsItsWeight) {
    for (int k = 0; k < 9; ++k)
        EXPECT_EQ(feq(k, 1.0, 0.0, 0.0), velocitySet.weights[static_cast<std::size_t>(k)]);
}

TEST_F(Equilibrium, TemperatureFormIsTheSamePolynomial) {
    for (int k = 0; k < 9; ++k)
        EXPECT_EQ(geqT(k, 0.37, u, v), feq(k, 0.37, u, v));
}

TEST_F(Equilibrium, EnthalpyFormCarriesTheEnthalpyAndTransportsTheTemperature) {
    const Vec3 m = moments([](int k) { return geqH(k, 2.5, 0.4, u, v); });
    EXPECT_NEAR(m.x, 2.5, 1e-14);
    EXPECT_NEAR(m.y, 0.4 * u, 1e-15);
    EXPECT_NEAR(m.z, 0.4 * v, 1e-15);
}

TEST_F(Equilibrium, LftfVariantTransportsTheEnthalpy) {
    caseSettings.lftfOn = true;
    const Vec3 m = moments([](int k) { return geqH(k, 2.5, 0.4, u, v); });
    EXPECT_NEAR(m.x, 2.5, 1e-14);
    EXPECT_NEAR(m.y, 2.5 * u, 1e-14);
    EXPECT_NEAR(m.z, 2.5 * v, 1e-14);
}

TEST_F(Equilibrium, BothEnthalpyVariantsAgreeAtRest) {
    for (int k = 0; k < 9; ++k) {
        caseSettings.lftfOn = false;
        const double plain = geqH(k, 2.5, 0.4, 0.0, 0.0);
        caseSettings.lftfOn = true;
        EXPECT_NEAR(geqH(k, 2.5, 0.4, 0.0, 0.0), plain, 1e-15);
    }
}

TEST_F(Equilibrium, ForcingAddsNoMassAndTheForceToLeadingOrder) {
    const double Fx = 0.01, Fy = -0.02;
    const Vec3 atRest = moments([&](int k) { return forcing(k, rho, 0.0, 0.0, Fx, Fy); });
    EXPECT_NEAR(atRest.x, 0.0, 1e-17);
    EXPECT_NEAR(atRest.y, rho * Fx, 1e-16);
    EXPECT_NEAR(atRest.z, rho * Fy, 1e-16);
    const Vec3 moving = moments([&](int k) { return forcing(k, rho, u, v, Fx, Fy); });
    EXPECT_NEAR(moving.x, 0.0, 1e-17);
}

TEST_F(Equilibrium, HeatSourceSumsToItsStrength) {
    caseSettings.heatSource = 0.25;
    const Vec3 m = moments([](int k) { return heatSourceTerm(k, u, v); });
    EXPECT_NEAR(m.x, 0.25, 1e-15);
    EXPECT_NEAR(m.y, 0.25 * u, 1e-15);
}
