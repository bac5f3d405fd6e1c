// One step of the whole mesh: thread counts, switches, conservation.
#include "solver2d/time_step.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/checks.h"
#include "solver2d/enthalpy.h"
#include "solver2d/equilibrium.h"
#include "solver2d/loop_team.h"
#include "support/allocation_count.h"
#include "support/mesh_builder.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <omp.h>
#include <vector>

using namespace fluvane;

namespace {

class TimeStep : public testing::Test {
protected:
    void SetUp() override {
        m_threads = omp_get_max_threads();
        prepare();
    }
    void TearDown() override {
        omp_set_num_threads(m_threads);
        support::resetProcessState();
    }

    static void prepare(bool triangles = false) {
        support::resetProcessState();
        support::useD2Q9();
        support::PlaneCells plane = triangles ? support::cutRectangles(13, 11) : support::rectangles(13, 11);
        support::distort(plane, 0.05);
        support::makeMesh(plane, 4, support::sidesOfBox());
        support::usePlainSettings(0.005);
        setPhaseChange(0.8, 0.4, 0.5, 0.0);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        caseSettings.buoyancyOn = true;
        support::fillRandomState(3);
    }

    static std::vector<double> fields() {
        std::vector<double> all;
        for (const CellRecord& c : mesh.cells2D)
            all.insert(all.end(), {c.rho, c.u, c.v, c.T, c.H, c.Fx, c.Fy, c.uPrev, c.vPrev, c.TPrev});
        const CellPools& p = mesh.cellPools;
        for (const HugeArray<double>* pool : {&p.fTilde, &p.fTildePlus, &p.fBarPlus, &p.gTilde, &p.gTildePlus,
                                              &p.gBarPlus, &p.gradFBarPlus, &p.gradGBarPlus})
            all.insert(all.end(), pool->begin(), pool->end());
        for (const HugeArray<double>* pool : {&mesh.facePools.fFace, &mesh.facePools.gFace})
            all.insert(all.end(), pool->begin(), pool->end());
        return all;
    }

    static double mass() {
        double total = 0.0;
        for (const CellRecord& c : mesh.cells2D)
            total += c.area * c.rho;
        return total;
    }

    static void restOnAllFaces() {
        for (FaceRecord& face : mesh.faces2D)
            face.u = face.v = face.Fx = face.Fy = 0.0;
    }

private:
    int m_threads = 1;
};

bool sameBits(const std::vector<double>& a, const std::vector<double>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

} // namespace

TEST_F(TimeStep, IsTheSameBitsOnOneTwoThreeAndSevenThreads) {
    for (const int mode : {0, 1}) {
        std::vector<double> onOne;
        for (const int threads : {1, 2, 3, 7}) {
            prepare(mode == 1);
            caseSettings.thermalMode = mode;
            omp_set_num_threads(threads);
            for (int n = 0; n < 5; ++n)
                step2D();
            if (threads == 1)
                onOne = fields();
            else
                EXPECT_TRUE(sameBits(fields(), onOne)) << threads << " threads, thermal mode " << mode;
        }
        ASSERT_TRUE(std::isfinite(onOne.front()));
    }
}

TEST_F(TimeStep, AsksForNoMemory) {
    if (!support::countsAllocations())
        GTEST_SKIP() << "the sanitizer's own operators do not count";
    for (const int mode : {0, 1}) {
        caseSettings.thermalMode = mode;
        omp_set_num_threads(2);
        withTeam([] {
            step2D();
            const std::int64_t before = support::allocationCount();
            step2D();
            EXPECT_EQ(support::allocationCount(), before);
        });
    }
    EXPECT_GT(support::allocationCount(), 0);
}

TEST_F(TimeStep, WithBothSwitchesOffChangesNothing) {
    caseSettings.flowOn = 0;
    caseSettings.heatOn = false;
    const std::vector<double> before = fields();
    step2D();
    EXPECT_TRUE(sameBits(fields(), before));
}

TEST_F(TimeStep, CellsWithoutDensityBecomeNaNsThatTheHealthCheckFinds) {
    for (CellRecord& c : mesh.cells2D) {
        c.rho = 0.0;
        std::fill_n(c.fTilde.data(), 9, 0.0);
    }
    ASSERT_FALSE(hasNaN());
    step2D();
    EXPECT_TRUE(hasNaN());
}

TEST_F(TimeStep, ConductionAloneLeavesTheVelocityAsInitialised) {
    caseSettings.flowOn = 0;
    caseSettings.buoyancyOn = false;
    const double u = mesh.cells2D[5].u, v = mesh.cells2D[5].v, T = mesh.cells2D[5].T;
    step2D();
    EXPECT_EQ(mesh.cells2D[5].u, u);
    EXPECT_EQ(mesh.cells2D[5].v, v);
    EXPECT_NE(mesh.cells2D[5].T, T);
}

TEST_F(TimeStep, WithHeatOffTemperatureAndForceStayAsInitialised) {
    caseSettings.heatOn = false;
    const CellRecord& c = mesh.cells2D[7];
    const double T = c.T, TPrev = c.TPrev, Fx = c.Fx, Fy = c.Fy;
    step2D();
    EXPECT_EQ(c.T, T);
    EXPECT_EQ(c.TPrev, TPrev);
    EXPECT_EQ(c.Fx, Fx);
    EXPECT_EQ(c.Fy, Fy);
}

TEST_F(TimeStep, WithBuoyancyOffTheForceIsExactlyZeroAfterAHeatUpdate) {
    caseSettings.buoyancyOn = false;
    step2D();
    for (const CellRecord& c : mesh.cells2D) {
        EXPECT_EQ(c.Fx, 0.0);
        EXPECT_EQ(c.Fy, 0.0);
    }
}

TEST_F(TimeStep, ClosedBoxKeepsItsMassToRounding) {
    // A force on a wall face is carried through the wall by the recovery, so there is none here.
    caseSettings.buoyancyOn = false;
    restOnAllFaces();
    // The first collision starts from a rho that the noise in fTilde does not sum to; after one step it does.
    step2D();
    const double before = mass();
    for (int n = 0; n < 200; ++n)
        step2D();
    EXPECT_NEAR(mass(), before, 1e-13 * before);
}

TEST_F(TimeStep, AdiabaticBoxKeepsItsHeatToRounding) {
    restOnAllFaces();
    for (CellRecord& c : mesh.cells2D) {
        c.u = 0.0;
        c.v = 0.0;
    }
    caseSettings.flowOn = 0;
    const auto heat = [] {
        double total = 0.0;
        for (const CellRecord& c : mesh.cells2D) {
            double T = 0.0;
            for (int k = 0; k < 9; ++k)
                T += c.gTilde[k];
            total += c.area * T;
        }
        return total;
    };
    // The first collision starts from a T that the noise in gTilde does not sum to; after one step it does.
    step2D();
    const double before = heat();
    for (int n = 0; n < 200; ++n)
        step2D();
    EXPECT_NEAR(heat(), before, 1e-12 * std::abs(before));
}

TEST_F(TimeStep, AdiabaticCavityKeepsItsEnthalpyToRoundingWhileItMelts) {
    const auto enthalpy = [] {
        double total = 0.0;
        for (const CellRecord& c : mesh.cells2D)
            total += c.area * c.H;
        return total;
    };
    const auto liquid = [] {
        double total = 0.0;
        for (const CellRecord& c : mesh.cells2D)
            total += c.area * liquidFraction(c.H);
        return total;
    };
    for (const bool lftf : {false, true}) {
        prepare();
        caseSettings.thermalMode = 1;
        caseSettings.lftfOn = lftf;
        setPhaseChange(5.0, 0.4, 0.4, 0.0);
        restOnAllFaces();
        // Hot liquid below, ice on the point of melting above; the walls at rest.
        for (CellRecord& c : mesh.cells2D) {
            c.u = c.v = c.Fx = c.Fy = 0.0;
            c.T = c.yc < 0.5 ? 1.0 : 0.395;
            c.H = enthalpyOf(c.T);
            for (int k = 0; k < 9; ++k) {
                c.fTilde[k] = feq(k, 1.0, 0.0, 0.0);
                c.gTilde[k] = geqH(k, c.H, c.T, 0.0, 0.0);
            }
        }
        for (FaceRecord& face : mesh.faces2D)
            face.flowKind = face.thermalKind = 0;
        const double before = enthalpy();
        const double liquidBefore = liquid();
        double moved = 0.0;
        for (int n = 0; n < 300; ++n)
            step2D();
        for (const CellRecord& c : mesh.cells2D)
            moved = std::max(moved, std::abs(c.v));
        EXPECT_NEAR(enthalpy(), before, 1e-12 * std::abs(before)) << "LFTF " << lftf;
        EXPECT_GT(std::abs(liquid() - liquidBefore), 1e-3) << "the front has moved, LFTF " << lftf;
        EXPECT_GT(moved, 1e-6) << "and so has the liquid";
    }
}

TEST_F(TimeStep, UniformStateAtRestStaysUniform) {
    caseSettings.buoyancyOn = false;
    for (CellRecord& c : mesh.cells2D) {
        c.rho = 1.0;
        c.u = c.v = c.Fx = c.Fy = 0.0;
        c.T = 0.25;
        for (std::size_t k = 0; k < 9; ++k) {
            c.fTilde[k] = velocitySet.weights[k];
            c.gTilde[k] = 0.25 * velocitySet.weights[k];
        }
    }
    restOnAllFaces();
    for (int n = 0; n < 50; ++n)
        step2D();
    for (const CellRecord& c : mesh.cells2D) {
        EXPECT_NEAR(c.rho, 1.0, 1e-12);
        EXPECT_NEAR(c.u, 0.0, 1e-12);
        EXPECT_NEAR(c.v, 0.0, 1e-12);
        EXPECT_NEAR(c.T, 0.25, 1e-12);
    }
}

TEST_F(TimeStep, EmptyMeshIsLeftAlone) {
    mesh.clear();
    step2D();
    EXPECT_EQ(mesh.cellCount, 0);
}

TEST_F(TimeStep, MeshWithoutBoundaryFacesSkipsTheBoundaryLoop) {
    // Without zones the faces end with the interior ones; what follows them is not touched.
    support::makeMesh(support::rectangles(4, 4), 4, support::sidesOfBox());
    mesh.zoneCount = 0;
    support::fillRandomState(5);
    std::vector<double> boundary;
    for (std::int32_t i = mesh.interiorFaceCount; i < static_cast<std::int32_t>(mesh.faces2D.size()); ++i)
        boundary.push_back(mesh.faces2D[static_cast<std::size_t>(i)].rho);
    step2D();
    std::size_t j = 0;
    for (std::int32_t i = mesh.interiorFaceCount; i < static_cast<std::int32_t>(mesh.faces2D.size()); ++i)
        EXPECT_EQ(mesh.faces2D[static_cast<std::size_t>(i)].rho, boundary[j++]);
}
