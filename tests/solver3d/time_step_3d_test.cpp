// One 3D step of the whole mesh: thread counts, switches, conservation.
#include "solver3d/time_step.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "solver2d/loop_team.h"
#include "solver3d/equilibrium.h"
#include "support/allocation_count.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <omp.h>
#include <vector>

using namespace fluvane;

namespace {

constexpr Vec3 size{5.0, 4.0, 3.0};

class TimeStep3D : public testing::Test {
protected:
    void SetUp() override {
        m_threads = omp_get_max_threads();
        prepare();
    }
    void TearDown() override {
        omp_set_num_threads(m_threads);
        support::resetProcessState();
    }

    static void prepare() {
        support::resetProcessState();
        support::useD3Q19();
        support::Tetrahedra box = support::boxOfTetrahedra(5, 4, 3);
        support::distort(box, size, 0.2);
        support::makeMesh(box, 6, support::sidesOfBox3D(size));
        support::usePlainSettings(0.05);
        setPhaseChange(0.8, 0.4, 0.5, 0.0);
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
        caseSettings.buoyancyOn = true;
        support::fillRandomState(3);
    }

    static std::vector<double> cellFields() {
        std::vector<double> all;
        for (const CellRecord3D& c : mesh.cells3D)
            all.insert(all.end(), {c.rho, c.u, c.v, c.w, c.T, c.H, c.Fx, c.Fy, c.Fz, c.uPrev, c.vPrev,
                                   c.wPrev, c.TPrev});
        const CellPools& p = mesh.cellPools;
        for (const HugeArray<double>* pool : {&p.fTilde, &p.fTildePlus, &p.fBarPlus, &p.gTilde, &p.gTildePlus,
                                              &p.gBarPlus, &p.gradFBarPlus, &p.gradGBarPlus})
            all.insert(all.end(), pool->begin(), pool->end());
        return all;
    }

    static std::vector<double> faceTemperatures() {
        std::vector<double> all;
        for (const FaceRecord3D& f : mesh.faces3D)
            all.push_back(f.T);
        return all;
    }

    static std::vector<double> fields() {
        std::vector<double> all = cellFields();
        for (const FaceRecord3D& f : mesh.faces3D)
            all.insert(all.end(), {f.rho, f.u, f.v, f.w, f.T, f.Fx, f.Fy, f.Fz});
        all.insert(all.end(), mesh.facePools.fFace.begin(), mesh.facePools.fFace.end());
        all.insert(all.end(), mesh.facePools.gFace.begin(), mesh.facePools.gFace.end());
        return all;
    }

    static double total(const auto& density) {
        double sum = 0.0;
        for (const CellRecord3D& c : mesh.cells3D)
            sum += c.volume * density(c);
        return sum;
    }

private:
    int m_threads = 1;
};

bool sameBits(const std::vector<double>& a, const std::vector<double>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

void restOnAllFaces() {
    for (FaceRecord3D& face : mesh.faces3D)
        face.u = face.v = face.w = face.Fx = face.Fy = face.Fz = 0.0;
}

} // namespace

TEST_F(TimeStep3D, IsTheSameBitsOnOneTwoThreeAndSevenThreads) {
    for (const int mode : {0, 1}) {
        std::vector<double> onOne;
        for (const int threads : {1, 2, 3, 7}) {
            prepare();
            caseSettings.thermalMode = mode;
            omp_set_num_threads(threads);
            for (int n = 0; n < 5; ++n)
                step3D();
            if (threads == 1)
                onOne = fields();
            else
                EXPECT_TRUE(sameBits(fields(), onOne)) << threads << " threads, thermal mode " << mode;
        }
        ASSERT_TRUE(std::isfinite(onOne.front()));
    }
}

TEST_F(TimeStep3D, AsksForNoMemory) {
    if (!support::countsAllocations())
        GTEST_SKIP() << "the sanitizer's own operators do not count";
    omp_set_num_threads(2);
    withTeam([] {
        step3D();
        const std::int64_t before = support::allocationCount();
        step3D();
        EXPECT_EQ(support::allocationCount(), before);
    });
    EXPECT_GT(support::allocationCount(), 0);
}

// Deliberate: interior faces lose their temperature all the same.
TEST_F(TimeStep3D, WithBothSwitchesOffChangesNoCellAndNoDistribution) {
    caseSettings.flowOn = 0;
    caseSettings.heatOn = false;
    const auto restore = [temperatures = faceTemperatures()] {
        for (std::size_t i = 0; i < temperatures.size(); ++i)
            mesh.faces3D[i].T = temperatures[i];
    };
    const std::vector<double> before = fields();
    step3D();
    EXPECT_EQ(mesh.faces3D[0].T, 0.0);
    restore();
    EXPECT_TRUE(sameBits(fields(), before));
}

TEST_F(TimeStep3D, ConductionAloneLeavesTheVelocityAsInitialised) {
    caseSettings.flowOn = 0;
    const CellRecord3D before = mesh.cells3D[5];
    const double faceU = mesh.faces3D[5].u;
    step3D();
    EXPECT_EQ(mesh.cells3D[5].u, before.u);
    EXPECT_EQ(mesh.cells3D[5].w, before.w);
    EXPECT_EQ(mesh.faces3D[5].u, faceU);
    EXPECT_NE(mesh.cells3D[5].T, before.T);
}

TEST_F(TimeStep3D, WithoutHeatTheForceStaysAndFaceTemperaturesAreZero) {
    caseSettings.heatOn = false;
    const CellRecord3D before = mesh.cells3D[7];
    step3D();
    EXPECT_EQ(mesh.cells3D[7].T, before.T);
    EXPECT_EQ(mesh.cells3D[7].Fx, before.Fx);
    EXPECT_EQ(mesh.faces3D[0].T, 0.0);
}

TEST_F(TimeStep3D, ClosedBoxWithoutForceKeepsItsMassToRounding) {
    caseSettings.heatOn = false;
    for (CellRecord3D& c : mesh.cells3D)
        c.Fx = c.Fy = c.Fz = 0.0;
    restOnAllFaces();
    const auto density = [](const CellRecord3D& c) { return c.rho; };
    step3D(); // from here on the moments are those of the distributions
    const double before = total(density);
    for (int n = 0; n < 50; ++n)
        step3D();
    EXPECT_NEAR(total(density), before, 1e-12 * before);
}

TEST_F(TimeStep3D, AdiabaticBoxKeepsItsHeatToRounding) {
    caseSettings.buoyancyOn = false;
    caseSettings.flowOn = 0;
    restOnAllFaces();
    const auto heat = [](const CellRecord3D& c) { return c.T; };
    step3D();
    const double before = total(heat);
    for (int n = 0; n < 50; ++n)
        step3D();
    EXPECT_NEAR(total(heat), before, 1e-12 * before);
}

TEST_F(TimeStep3D, UniformStateAtRestStaysAsItIs) {
    caseSettings.buoyancyOn = false;
    for (CellRecord3D& c : mesh.cells3D) {
        c.rho = 1.0;
        c.T = 0.4;
        c.u = c.v = c.w = c.Fx = c.Fy = c.Fz = 0.0;
        for (int k = 0; k < velocitySet.velocityCount; ++k) {
            c.fTilde[k] = feq3D(k, 1.0, 0.0, 0.0, 0.0);
            c.gTilde[k] = geqT3D(k, 0.4, 0.0, 0.0, 0.0);
        }
    }
    restOnAllFaces();
    for (int n = 0; n < 20; ++n)
        step3D();
    for (const CellRecord3D& c : mesh.cells3D) {
        EXPECT_NEAR(c.rho, 1.0, 1e-13);
        EXPECT_NEAR(c.T, 0.4, 1e-13);
        EXPECT_NEAR(std::abs(c.u) + std::abs(c.v) + std::abs(c.w), 0.0, 1e-13);
    }
}

TEST_F(TimeStep3D, MeshWithoutBoundaryFacesOrWithoutInteriorFacesSkipsThatLoop) {
    mesh.zoneCount = 0; // the boundary faces are there, but belong to no zone
    const double boundaryT = mesh.faces3D[static_cast<std::size_t>(mesh.interiorFaceCount)].T;
    step3D();
    EXPECT_EQ(mesh.faces3D[static_cast<std::size_t>(mesh.interiorFaceCount)].T, boundaryT);

    prepare();
    mesh.interiorFaceCount = 0;
    mesh.zoneLastFace.fill(0);
    const double interiorT = mesh.faces3D[3].T;
    step3D();
    EXPECT_EQ(mesh.faces3D[3].T, interiorT);
}
