// The process-wide scalars that the kernels read, gathered once a step.
#pragma once

#include "solver2d/enthalpy_relation.h"
#include "solver2d/equilibrium_polynomial.h"
#include "velocity/velocity_set.h"

#include <cstdint>

namespace fluvane {

/// Factors of the collision: f+ = A f + B feq + C F.
struct CollisionFactors {
    double A = 0.0; ///< (2 tau - dt) / (2 tau + dt)
    double B = 0.0; ///< 2 dt / (2 tau + dt)
    double C = 0.0; ///< 2 tau dt / (2 tau + dt)
};

/// Factors of the recovery at the half step h: f = a fBar + b feq + c F.
struct RecoveryFactors {
    double a = 0.0; ///< 2 tau / (2 tau + h)
    double b = 0.0; ///< h / (2 tau + h)
    double c = 0.0; ///< tau h / (2 tau + h)
};

/// How the heat equation is solved in this step.
enum class HeatForm { off, temperature, enthalpy, enthalpyLftf };

/// Everything of settings and velocity set that a step reads; the kernels take it by reference. Per-velocity
/// tables are one component after the other, so that a row of them is one load.
struct StepConstants {
    static constexpr int tableSize = 32;

    alignas(64) double xi[3][tableSize] = {};
    alignas(64) double reach[3][tableSize] = {}; ///< how far a velocity gets in half a step
    alignas(64) double weights[tableSize] = {};
    /// 1, xi_x, xi_y, xi_z of each velocity: the factors of density and momentum.
    alignas(64) double momentFactors[tableSize][4] = {};
    std::int32_t opposite[tableSize] = {};
    int velocityCount = 0;

    bool flowOn = false;
    HeatForm heat = HeatForm::off;
    bool buoyancyOn = false;
    double buoyancyCoeff = 0.0;
    double heatSource = 0.0;
    double dt = 0.0;
    double halfStep = 0.0;    ///< h = dt / 2
    double quarterStep = 0.0; ///< dt / 4
    double alpha = 0.0;
    double tauG = 0.0;
    PolynomialFactors polynomial;
    CollisionFactors collideF;
    CollisionFactors collideG;
    RecoveryFactors recoverF;
    RecoveryFactors recoverG;
    EnthalpyRelation relation;

    bool heatOn() const { return heat != HeatForm::off; }
    bool enthalpyForm() const { return heat == HeatForm::enthalpy || heat == HeatForm::enthalpyLftf; }
};

/// The constants with the 2D velocities and the settings as they stand.
StepConstants stepConstants2D();

/// The same with the 3D velocities; deliberate: no heat source, and no difference between the enthalpy forms.
StepConstants stepConstants3D();

} // namespace fluvane
