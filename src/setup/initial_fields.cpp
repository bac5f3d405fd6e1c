// The parameters that follow from the physics inputs, and the uniform initial state.
#include "setup/initial_fields.h"

#include "dialogs/case_settings.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "solver2d/enthalpy.h"
#include "solver2d/equilibrium.h"
#include "solver2d/equilibrium_polynomial.h"

#include <QString>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace fluvane {

namespace {

constexpr double initialDensity = 1.0;
constexpr double initialTemperature = 0.0;

struct UniformState {
    std::array<double, VelocitySet::capacity> f{};
    std::array<double, VelocitySet::capacity> g{};
    double H = 0.0;
};

std::size_t velocityTotal() {
    return static_cast<std::size_t>(std::max(velocitySet.velocityCount, 0));
}

/// Says why and returns true when the cells' arrays have another size than the velocity set.
bool refuseForeignRecords(std::size_t cellCount) {
    if (cellCount == 0 || mesh.matchesVelocitySet())
        return false;
    reportProblem(QStringLiteral("The mesh was read with %1 velocities, the velocity set has %2 now: "
                                 "read the mesh again.")
                      .arg(mesh.recordVelocityCount)
                      .arg(velocitySet.velocityCount));
    return true;
}

void setHeat(double dTvalue, int heatChoice, int scaleKind) {
    CaseSettings& s = caseSettings;
    s.heatOn = heatChoice != 0;
    if (!s.heatOn)
        return; // deliberate: the thermal scale stays in force for the natural-convection formulas
    s.dT = dTvalue;
    s.thermalScaleKind = scaleKind;
    s.heatSource = scaleKind == 2 ? dTvalue : 0.0;
}

void setThermalForm(int phaseChoice) {
    if (phaseChoice < 0 || phaseChoice > 2)
        return;
    caseSettings.thermalMode = phaseChoice == 0 ? 0 : 1;
    caseSettings.lftfOn = phaseChoice == 2;
}

void setForcedFlow(double Re) {
    CaseSettings& s = caseSettings;
    s.flowOn = 1;
    s.buoyancyOn = false;
    s.Re = Re;
    s.niu = s.U0 * s.L / s.Re;
    s.tauF = s.niu / s.RT;
    s.alpha = s.niu / s.Pr;
    s.tauG = s.alpha / s.RT;
}

/// Deliberate: driven by a heat source, natural convection takes diffusivity and buoyancy coefficient from
/// the previous set-up.
void setNaturalConvection(double Ra) {
    CaseSettings& s = caseSettings;
    s.flowOn = 1;
    s.buoyancyOn = true;
    s.Ra = Ra;
    if (s.thermalScaleKind == 0) {
        s.buoyancyCoeff = s.U0 * s.U0 / s.L / s.dT;
        s.alpha = std::sqrt(s.buoyancyCoeff * s.dT * (s.L * s.L * s.L) / s.Pr / s.Ra);
    } else if (s.thermalScaleKind == 1) {
        s.alpha = std::sqrt(s.U0 * s.U0 * (s.L * s.L) / s.Ra / s.Pr);
        s.buoyancyCoeff = s.U0 * s.U0 * s.alpha / s.dT / s.L / s.L;
    }
    s.tauG = s.alpha / s.RT;
    s.niu = s.alpha * s.Pr;
    s.tauF = s.niu / s.RT;
}

void setConduction(double diffusivity) {
    CaseSettings& s = caseSettings;
    s.flowOn = 0;
    s.buoyancyOn = false;
    s.alpha = diffusivity;
    s.tauG = s.alpha / s.RT;
}

void setSpacingAndTimeStep() {
    CaseSettings& s = caseSettings;
    s.dx = s.is3D ? minFaceArea3D() : minFaceLength2D();
    // Deliberate: flowOn is never 2, so the diffusive limit is never chosen; the rule is kept beside the one
    // in use.
    if (s.flowOn == 2)
        s.dt = s.CFL * s.dx / (s.alpha / s.dx + s.soundSpeed);
    else
        s.dt = s.CFL * s.dx / (s.soundSpeed + s.U0);
}

UniformState uniformState2D() {
    constexpr double u = 0.0;
    constexpr double v = 0.0;
    constexpr double T = initialTemperature;
    const bool enthalpyForm = caseSettings.thermalMode == 1;
    UniformState state;
    state.H = enthalpyForm ? enthalpyOf(T) : 0.0; // deliberate: whatever initial liquid fraction was typed
    for (std::size_t k = 0; k < velocityTotal(); ++k) {
        const int velocity = static_cast<int>(k);
        state.f[k] = feq(velocity, initialDensity, u, v);
        state.g[k] = enthalpyForm ? geqH(velocity, state.H, T, u, v) : geqT(velocity, T, u, v);
    }
    return state;
}

UniformState uniformState3D() {
    constexpr Vec3 u{};
    const PolynomialFactors factors = polynomialFactors(caseSettings.RT);
    UniformState state;
    for (std::size_t k = 0; k < velocityTotal(); ++k) {
        const Vec3& xi = velocitySet.xi3D[k];
        const double polynomial = equilibriumPolynomial(factors, xi.x * u.x + xi.y * u.y + xi.z * u.z,
                                                        u.x * u.x + u.y * u.y + u.z * u.z);
        state.f[k] = velocitySet.weights[k] * initialDensity * polynomial;
        state.g[k] = velocitySet.weights[k] * initialTemperature * polynomial;
    }
    return state;
}

} // namespace

void initialiseFields(double L, double Ma, double Pr, double ReOrRa, double dTvalue, int flowKind,
                      int heatChoice, int scaleKind, int phaseChoice, int timeChoice) {
    CaseSettings& s = caseSettings;
    if (refuseForeignRecords(s.is3D ? mesh.cells3D.size() : mesh.cells2D.size()))
        return;
    if (timeChoice == 0 || timeChoice == 1)
        s.steadyState = timeChoice == 0;
    s.U0 = s.soundSpeed * Ma;
    s.Ma = Ma;
    s.Pr = Pr;
    s.L = L;
    setHeat(dTvalue, heatChoice, scaleKind);
    setThermalForm(phaseChoice);
    if (flowKind == 0)
        setForcedFlow(ReOrRa);
    else if (flowKind == 1)
        setNaturalConvection(ReOrRa);
    else if (flowKind == 2)
        setConduction(Pr);
    if (s.is3D)
        resetFields3D();
    else
        resetFields2D();
    setSpacingAndTimeStep();
}

void resetFields2D() {
    if (refuseForeignRecords(mesh.cells2D.size()))
        return;
    const UniformState state = uniformState2D();
    const bool enthalpyForm = caseSettings.thermalMode == 1;
    const std::size_t Q = velocityTotal();
    const auto count = static_cast<std::ptrdiff_t>(mesh.cells2D.size());
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        CellRecord& cell = mesh.cells2D.data()[i];
        cell.rho = initialDensity;
        cell.u = cell.v = 0.0;
        cell.T = initialTemperature;
        if (enthalpyForm)
            cell.H = state.H;
        std::copy_n(state.f.data(), Q, cell.fTilde.data());
        std::copy_n(state.g.data(), Q, cell.gTilde.data());
    }
}

void resetFields3D() {
    if (refuseForeignRecords(mesh.cells3D.size()))
        return;
    const UniformState state = uniformState3D();
    const std::size_t Q = velocityTotal();
    const auto count = static_cast<std::ptrdiff_t>(mesh.cells3D.size());
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        CellRecord3D& cell = mesh.cells3D.data()[i];
        cell.rho = initialDensity;
        cell.u = cell.v = cell.w = 0.0;
        cell.T = initialTemperature;
        std::copy_n(state.f.data(), Q, cell.fTilde.data());
        std::copy_n(state.g.data(), Q, cell.gTilde.data());
    }
}

} // namespace fluvane
