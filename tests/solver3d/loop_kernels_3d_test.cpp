// Every path of the 3D kernels against the plain reference, and every instruction set against every other.
#include "solver3d/loop_kernels_3d.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "plain_reference/plain_solver_3d.h"
#include "solver2d/instruction_set.h"
#include "solver3d/time_step.h"
#include "support/deviation.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

using namespace fluvane;
using support::Deviation;

namespace fluvane {
void PrintTo(InstructionSet set, std::ostream* out) {
    *out << static_cast<int>(set);
}
} // namespace fluvane

namespace {

struct Physics {
    const char* name;
    bool flow, heat, enthalpy, buoyancy;
};

void PrintTo(const Physics& physics, std::ostream* out) {
    *out << physics.name;
}

const Physics everyPhysics[] = {
    {"flow", true, false, false, false},       {"conduction", false, true, false, false},
    {"flowAndHeat", true, true, false, false}, {"buoyantFlow", true, true, false, true},
    {"melting", true, true, true, true},       {"meltingWithoutFlow", false, true, true, false},
    {"nothing", false, false, false, false},
};

void useSet(int velocities) {
    if (velocities == 7)
        support::useD3Q7();
    else if (velocities == 15)
        support::useD3Q15();
    else if (velocities == 19)
        support::useD3Q19();
    else
        support::useD3Q27();
}

class KernelPaths3D : public testing::TestWithParam<std::tuple<Physics, int, InstructionSet>> {
protected:
    void SetUp() override {
        const auto& [physics, velocities, instructions] = GetParam();
        support::resetProcessState();
        useSet(velocities);
        support::Tetrahedra box = support::boxOfTetrahedra(4, 3, 3);
        support::distort(box, {4.0, 3.0, 3.0}, 0.2);
        support::makeMesh(box, 6, support::sidesOfBox3D({4.0, 3.0, 3.0}));
        support::usePlainSettings(0.05);
        setPhaseChange(0.8, 0.4, 0.5, 0.0);
        caseSettings.flowOn = physics.flow;
        caseSettings.heatOn = physics.heat;
        caseSettings.thermalMode = physics.enthalpy ? 1 : 0;
        caseSettings.buoyancyOn = physics.buoyancy;
        // Neither is known to the 3D scheme.
        caseSettings.heatSource = 0.3;
        caseSettings.lftfOn = physics.enthalpy;
        support::fillRandomState(11);
        assignKinds();
        ASSERT_TRUE(useInstructionSet(instructions));
    }
    void TearDown() override {
        useInstructionSet(widestInstructionSet());
        support::resetProcessState();
    }

    /// All combinations of flow and thermal kinds turn up on every side.
    static void assignKinds() {
        for (std::int32_t i = mesh.interiorFaceCount; i < mesh.totalFaceCount(); ++i) {
            FaceRecord3D& face = mesh.faces3D[static_cast<std::size_t>(i)];
            face.flowKind = i % 3;
            face.thermalKind = (i / 3) % 3;
        }
    }
};

void expectCellsEqual(const plain::PlainSolver3D& reference) {
    Deviation rho, velocity, T, H, force, f, fPlus, fBar, fGrad, g, gPlus, gBar, gGrad, previous;
    const int Q = reference.velocityCount();
    for (std::size_t i = 0; i < reference.cells().size(); ++i) {
        const CellRecord3D& a = mesh.cells3D[i];
        const plain::Cell3D& b = reference.cells()[i];
        rho.add(a.rho, b.rho);
        T.add(a.T, b.T);
        H.add(a.H, b.H);
        velocity.add(&a.u, &b.u, 3);
        force.add(&a.Fx, &b.Fx, 3);
        previous.add(&a.uPrev, &b.uPrev, 3);
        previous.add(a.TPrev, b.TPrev);
        f.add(a.fTilde, b.fTilde.get(), Q);
        fPlus.add(a.fTildePlus, b.fTildePlus.get(), Q);
        fBar.add(a.fBarPlus, b.fBarPlus.get(), Q);
        fGrad.add(a.gradFBarPlus.x, b.dfdx.get(), Q);
        fGrad.add(a.gradFBarPlus.y, b.dfdy.get(), Q);
        fGrad.add(a.gradFBarPlus.z, b.dfdz.get(), Q);
        g.add(a.gTilde, b.gTilde.get(), Q);
        gPlus.add(a.gTildePlus, b.gTildePlus.get(), Q);
        gBar.add(a.gBarPlus, b.gBarPlus.get(), Q);
        gGrad.add(a.gradGBarPlus.x, b.dgdx.get(), Q);
        gGrad.add(a.gradGBarPlus.y, b.dgdy.get(), Q);
        gGrad.add(a.gradGBarPlus.z, b.dgdz.get(), Q);
    }
    rho.expectSmall("rho");
    velocity.expectSmall("velocity");
    T.expectSmall("T");
    H.expectSmall("H");
    force.expectSmall("force");
    previous.expectSmall("previous values");
    f.expectSmall("fTilde");
    fPlus.expectSmall("fTildePlus");
    fBar.expectSmall("fBarPlus");
    fGrad.expectSmall("gradFBarPlus");
    g.expectSmall("gTilde");
    gPlus.expectSmall("gTildePlus");
    gBar.expectSmall("gBarPlus");
    gGrad.expectSmall("gradGBarPlus");
}

void expectFacesEqual(const plain::PlainSolver3D& reference) {
    Deviation rho, velocity, T, force, f, g;
    const int Q = reference.velocityCount();
    for (std::size_t i = 0; i < reference.faces().size(); ++i) {
        const FaceRecord3D& a = mesh.faces3D[i];
        const plain::Face3D& b = reference.faces()[i];
        rho.add(a.rho, b.rho);
        velocity.add(&a.u, &b.u, 3);
        T.add(a.T, b.T);
        force.add(&a.Fx, &b.Fx, 3);
        f.add(a.fFace, b.fFace.get(), Q);
        g.add(a.gFace, b.gFace.get(), Q);
    }
    rho.expectSmall("face rho");
    velocity.expectSmall("face velocity");
    T.expectSmall("face T");
    force.expectSmall("face force");
    f.expectSmall("fFace");
    g.expectSmall("gFace");
}

std::string pathName(const testing::TestParamInfo<KernelPaths3D::ParamType>& info) {
    const auto& [physics, velocities, instructions] = info.param;
    const char* const instructionNames[] = {"Baseline", "Avx2", "Avx512"};
    return physics.name + std::to_string(velocities) + instructionNames[static_cast<int>(instructions)];
}

/// Baseline and whatever else this machine has.
std::vector<InstructionSet> availableInstructionSets() {
    std::vector<InstructionSet> sets{InstructionSet::baseline};
    for (const InstructionSet set : {InstructionSet::avx2, InstructionSet::avx512})
        if (set <= widestInstructionSet())
            sets.push_back(set);
    return sets;
}

} // namespace

TEST_P(KernelPaths3D, OneStepEqualsThePlainReference) {
    plain::PlainSolver3D reference;
    reference.step();
    step3D();
    expectCellsEqual(reference);
    expectFacesEqual(reference);
}

TEST_P(KernelPaths3D, EveryInstructionSetGivesTheSameBits) {
    const CellPools& pools = mesh.cellPools;
    const auto state = [&] {
        std::vector<double> all(pools.fTilde.begin(), pools.fTilde.end());
        all.insert(all.end(), pools.gTilde.begin(), pools.gTilde.end());
        for (const CellRecord3D& c : mesh.cells3D)
            all.insert(all.end(), {c.rho, c.u, c.v, c.w, c.T, c.H, c.Fx, c.Fy, c.Fz});
        return all;
    };
    step3D();
    step3D();
    const std::vector<double> here = state();
    SetUp();
    ASSERT_TRUE(useInstructionSet(InstructionSet::baseline));
    step3D();
    step3D();
    const std::vector<double> baseline = state();
    ASSERT_EQ(here.size(), baseline.size());
    EXPECT_EQ(std::memcmp(here.data(), baseline.data(), here.size() * sizeof(double)), 0);
}

INSTANTIATE_TEST_SUITE_P(All, KernelPaths3D,
                         testing::Combine(testing::ValuesIn(everyPhysics), testing::Values(7, 15, 19, 27),
                                          testing::ValuesIn(availableInstructionSets())),
                         pathName);
