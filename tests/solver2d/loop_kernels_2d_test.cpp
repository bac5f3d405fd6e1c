// Every path of the kernels against the plain reference, and every instruction set against every other.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "plain_reference/plain_solver_2d.h"
#include "solver2d/instruction_set.h"
#include "solver2d/time_step.h"
#include "support/deviation.h"
#include "support/mesh_builder.h"
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

enum class Shape { quads, triangles };
enum class Set { nine, thirteen };

void PrintTo(Shape shape, std::ostream* out) {
    *out << (shape == Shape::quads ? "quads" : "triangles");
}
void PrintTo(Set set, std::ostream* out) {
    *out << (set == Set::nine ? "nine" : "thirteen");
}

struct Physics {
    const char* name;
    bool flow, heat, enthalpy, lftf, buoyancy, source;
};

void PrintTo(const Physics& physics, std::ostream* out) {
    *out << physics.name;
}

const Physics everyPhysics[] = {
    {"flow", true, false, false, false, false, false},
    {"conduction", false, true, false, false, false, false},
    {"conductionWithSource", false, true, false, false, false, true},
    {"flowAndHeat", true, true, false, false, false, false},
    {"buoyantFlow", true, true, false, false, true, false},
    {"buoyantFlowWithSource", true, true, false, false, true, true},
    {"melting", true, true, true, false, true, false},
    {"meltingWithSource", true, true, true, false, false, true},
    {"meltingWithoutFlow", false, true, true, false, false, false},
    {"lftf", true, true, true, true, true, false},
    {"nothing", false, false, false, false, false, false},
};

class KernelPaths : public testing::TestWithParam<std::tuple<Physics, Shape, Set, InstructionSet>> {
protected:
    void SetUp() override {
        const auto& [physics, shape, set, instructions] = GetParam();
        support::resetProcessState();
        set == Set::nine ? support::useD2Q9() : support::useD2Q13();
        support::PlaneCells plane =
            shape == Shape::quads ? support::rectangles(7, 6) : support::cutRectangles(7, 6);
        support::distort(plane, 0.06);
        support::makeMesh(plane, 4, support::sidesOfBox());
        support::usePlainSettings(0.01);
        setPhaseChange(0.8, 0.4, 0.5, 0.0);
        caseSettings.flowOn = physics.flow;
        caseSettings.heatOn = physics.heat;
        caseSettings.thermalMode = physics.enthalpy ? 1 : 0;
        caseSettings.lftfOn = physics.lftf;
        caseSettings.buoyancyOn = physics.buoyancy;
        caseSettings.heatSource = physics.source ? 0.3 : 0.0;
        support::fillRandomState(11);
        assignKinds();
        ASSERT_TRUE(useInstructionSet(instructions));
    }
    void TearDown() override {
        useInstructionSet(widestInstructionSet());
        support::resetProcessState();
    }

    /// All combinations of flow and thermal kinds turn up along the boundary.
    static void assignKinds() {
        for (std::int32_t i = mesh.interiorFaceCount; i < mesh.totalFaceCount(); ++i) {
            FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
            face.flowKind = i % 3;
            face.thermalKind = (i / 3) % 3;
        }
    }
};

void expectCellsEqual(const plain::PlainSolver2D& reference) {
    Deviation rho, velocity, T, H, force, f, fPlus, fBar, fGrad, g, gPlus, gBar, gGrad, previous;
    const int Q = reference.velocityCount();
    for (std::size_t i = 0; i < reference.cells().size(); ++i) {
        const CellRecord& a = mesh.cells2D[i];
        const plain::Cell& b = reference.cells()[i];
        rho.add(a.rho, b.rho);
        velocity.add(a.u, b.u);
        velocity.add(a.v, b.v);
        T.add(a.T, b.T);
        H.add(a.H, b.H);
        force.add(a.Fx, b.Fx);
        force.add(a.Fy, b.Fy);
        previous.add(a.uPrev, b.uPrev);
        previous.add(a.vPrev, b.vPrev);
        previous.add(a.TPrev, b.TPrev);
        f.add(a.fTilde, b.fTilde.get(), Q);
        fPlus.add(a.fTildePlus, b.fTildePlus.get(), Q);
        fBar.add(a.fBarPlus, b.fBarPlus.get(), Q);
        fGrad.add(a.gradFBarPlus.x, b.dfdx.get(), Q);
        fGrad.add(a.gradFBarPlus.y, b.dfdy.get(), Q);
        g.add(a.gTilde, b.gTilde.get(), Q);
        gPlus.add(a.gTildePlus, b.gTildePlus.get(), Q);
        gBar.add(a.gBarPlus, b.gBarPlus.get(), Q);
        gGrad.add(a.gradGBarPlus.x, b.dgdx.get(), Q);
        gGrad.add(a.gradGBarPlus.y, b.dgdy.get(), Q);
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

void expectFacesEqual(const plain::PlainSolver2D& reference) {
    Deviation rho, velocity, T, H, force, f, g;
    const int Q = reference.velocityCount();
    for (std::size_t i = 0; i < reference.faces().size(); ++i) {
        const FaceRecord& a = mesh.faces2D[i];
        const plain::Face& b = reference.faces()[i];
        rho.add(a.rho, b.rho);
        velocity.add(a.u, b.u);
        velocity.add(a.v, b.v);
        T.add(a.T, b.T);
        H.add(a.H, b.H);
        force.add(a.Fx, b.Fx);
        force.add(a.Fy, b.Fy);
        f.add(a.fFace, b.fFace.get(), Q);
        g.add(a.gFace, b.gFace.get(), Q);
    }
    rho.expectSmall("face rho");
    velocity.expectSmall("face velocity");
    T.expectSmall("face T");
    H.expectSmall("face H");
    force.expectSmall("face force");
    f.expectSmall("fFace");
    g.expectSmall("gFace");
}

std::string pathName(const testing::TestParamInfo<KernelPaths::ParamType>& info) {
    const auto& [physics, shape, set, instructions] = info.param;
    const char* const instructionNames[] = {"Baseline", "Avx2", "Avx512"};
    return std::string(physics.name) + (shape == Shape::quads ? "Quads" : "Triangles") +
           (set == Set::nine ? "9" : "13") + instructionNames[static_cast<int>(instructions)];
}

} // namespace

TEST_P(KernelPaths, OneStepEqualsThePlainReference) {
    plain::PlainSolver2D reference;
    reference.step();
    step2D();
    expectCellsEqual(reference);
    expectFacesEqual(reference);
}

TEST_P(KernelPaths, EveryInstructionSetGivesTheSameBits) {
    const CellPools& pools = mesh.cellPools;
    const auto state = [&] {
        std::vector<double> all(pools.fTilde.begin(), pools.fTilde.end());
        all.insert(all.end(), pools.gTilde.begin(), pools.gTilde.end());
        for (const CellRecord& c : mesh.cells2D)
            all.insert(all.end(), {c.rho, c.u, c.v, c.T, c.H, c.Fx, c.Fy});
        return all;
    };
    step2D();
    step2D();
    const std::vector<double> here = state();
    SetUp();
    ASSERT_TRUE(useInstructionSet(InstructionSet::baseline));
    step2D();
    step2D();
    const std::vector<double> baseline = state();
    ASSERT_EQ(here.size(), baseline.size());
    EXPECT_EQ(std::memcmp(here.data(), baseline.data(), here.size() * sizeof(double)), 0);
}

/// Baseline and whatever else this machine has.
std::vector<InstructionSet> availableInstructionSets() {
    std::vector<InstructionSet> sets{InstructionSet::baseline};
    for (const InstructionSet set : {InstructionSet::avx2, InstructionSet::avx512})
        if (set <= widestInstructionSet())
            sets.push_back(set);
    return sets;
}

INSTANTIATE_TEST_SUITE_P(All, KernelPaths,
                         testing::Combine(testing::ValuesIn(everyPhysics),
                                          testing::Values(Shape::quads, Shape::triangles),
                                          testing::Values(Set::nine, Set::thirteen),
                                          testing::ValuesIn(availableInstructionSets())),
                         pathName);

TEST(InstructionSets, OneThatTheMachineLacksIsRefused) {
    const InstructionSet before = instructionSetInUse();
    if (widestInstructionSet() < InstructionSet::avx512) {
        EXPECT_FALSE(useInstructionSet(InstructionSet::avx512));
        EXPECT_EQ(instructionSetInUse(), before);
    }
    EXPECT_TRUE(useInstructionSet(InstructionSet::baseline));
    EXPECT_EQ(instructionSetInUse(), InstructionSet::baseline);
    EXPECT_TRUE(useInstructionSet(widestInstructionSet()));
}
