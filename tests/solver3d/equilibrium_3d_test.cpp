// Moments of the 3D equilibria and of the forcing term.
#include "solver3d/equilibrium.h"

#include "dialogs/case_settings.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "velocity/velocity_set.h"

#include <gtest/gtest.h>

using namespace fluvane;

namespace {

class Equilibrium3D : public testing::TestWithParam<void (*)()> {
protected:
    void SetUp() override {
        support::resetProcessState();
        GetParam()();
        caseSettings.RT = 1.0 / 3.0;
    }
    void TearDown() override { support::resetProcessState(); }

    struct Moments {
        double sum = 0.0, x = 0.0, y = 0.0, z = 0.0, xy = 0.0, zz = 0.0;
    };

    static Moments momentsOf(const auto& distribution) {
        Moments m;
        for (int k = 0; k < velocitySet.velocityCount; ++k) {
            const Vec3 xi = velocitySet.xi3D[static_cast<std::size_t>(k)];
            const double f = distribution(k);
            m.sum += f;
            m.x += xi.x * f;
            m.y += xi.y * f;
            m.z += xi.z * f;
            m.xy += xi.x * xi.y * f;
            m.zz += xi.z * xi.z * f;
        }
        return m;
    }
};

} // namespace

TEST_P(Equilibrium3D, HasTheMomentsOfDensityMomentumAndStress) {
    constexpr double rho = 1.1, u = 0.03, v = -0.02, w = 0.05;
    const Moments m = momentsOf([&](int k) { return feq3D(k, rho, u, v, w); });
    EXPECT_NEAR(m.sum, rho, 1e-15);
    EXPECT_NEAR(m.x, rho * u, 1e-15);
    EXPECT_NEAR(m.y, rho * v, 1e-15);
    EXPECT_NEAR(m.z, rho * w, 1e-15);
    EXPECT_NEAR(m.xy, rho * u * v, 1e-15);
    EXPECT_NEAR(m.zz, rho * (1.0 / 3.0 + w * w), 1e-15);
}

TEST_P(Equilibrium3D, OfTheTemperatureIsTheSamePolynomial) {
    for (int k = 0; k < velocitySet.velocityCount; ++k)
        EXPECT_EQ(geqT3D(k, 0.7, 0.03, -0.02, 0.05), feq3D(k, 0.7, 0.03, -0.02, 0.05));
}

TEST_P(Equilibrium3D, ForcingAddsNoMassAndTheMomentumOfTheForce) {
    constexpr double rho = 1.1;
    const Moments m =
        momentsOf([&](int k) { return forcing3D(k, rho, 0.001, -0.002, 0.003, 0.1, 0.2, -0.3); });
    EXPECT_NEAR(m.sum, 0.0, 1e-5); // of the third order in the velocity
    EXPECT_NEAR(m.x, rho * 0.1, 1e-5);
    EXPECT_NEAR(m.y, rho * 0.2, 1e-5);
    EXPECT_NEAR(m.z, -rho * 0.3, 1e-5);
}

INSTANTIATE_TEST_SUITE_P(Sets, Equilibrium3D,
                         testing::Values(&support::useD3Q15, &support::useD3Q19, &support::useD3Q27));
