// Gathers the constants of a step.
#include "solver2d/step_constants.h"

#include "dialogs/case_settings.h"

namespace fluvane {

namespace {

CollisionFactors collisionFactors(double tau, double dt) {
    return {(2.0 * tau - dt) / (2.0 * tau + dt), 2.0 * dt / (2.0 * tau + dt),
            2.0 * tau * dt / (2.0 * tau + dt)};
}

RecoveryFactors recoveryFactors(double tau, double h) {
    return {2.0 * tau / (2.0 * tau + h), h / (2.0 * tau + h), tau * h / (2.0 * tau + h)};
}

HeatForm heatForm(const CaseSettings& s) {
    if (!s.heatOn)
        return HeatForm::off;
    if (s.thermalMode == 0)
        return HeatForm::temperature;
    return s.lftfOn ? HeatForm::enthalpyLftf : HeatForm::enthalpy;
}

void setVelocity(StepConstants& c, std::size_t k, const Vec3& xi) {
    c.xi[0][k] = xi.x;
    c.xi[1][k] = xi.y;
    c.xi[2][k] = xi.z;
    for (auto axis : {0, 1, 2})
        c.reach[axis][k] = c.xi[axis][k] * c.halfStep;
    c.weights[k] = velocitySet.weights[k];
    c.opposite[k] = velocitySet.opposite[k];
    c.momentFactors[k][0] = 1.0;
    c.momentFactors[k][1] = xi.x;
    c.momentFactors[k][2] = xi.y;
    c.momentFactors[k][3] = xi.z;
}

/// Everything but the velocities, the form of the heat equation and its source.
StepConstants commonConstants() {
    const CaseSettings& s = caseSettings;
    StepConstants c;
    c.velocityCount = velocitySet.velocityCount;
    c.flowOn = s.flowOn != 0;
    c.buoyancyOn = s.buoyancyOn;
    c.buoyancyCoeff = s.buoyancyCoeff;
    c.dt = s.dt;
    c.halfStep = s.dt / 2.0;
    c.quarterStep = s.dt / 4.0;
    c.alpha = s.alpha;
    c.tauG = s.tauG;
    c.polynomial = polynomialFactors(s.RT);
    c.collideF = collisionFactors(s.tauF, s.dt);
    c.collideG = collisionFactors(s.tauG, s.dt);
    c.recoverF = recoveryFactors(s.tauF, c.halfStep);
    c.recoverG = recoveryFactors(s.tauG, c.halfStep);
    c.relation = enthalpyRelation(s);
    return c;
}

} // namespace

StepConstants stepConstants2D() {
    StepConstants c = commonConstants();
    for (std::size_t k = 0; k < velocitySet.xi2D.size(); ++k)
        setVelocity(c, k, {velocitySet.xi2D[k].x, velocitySet.xi2D[k].y, 0.0});
    c.heat = heatForm(caseSettings);
    c.heatSource = caseSettings.heatSource;
    return c;
}

StepConstants stepConstants3D() {
    StepConstants c = commonConstants();
    for (std::size_t k = 0; k < velocitySet.xi3D.size(); ++k)
        setVelocity(c, k, velocitySet.xi3D[k]);
    if (caseSettings.heatOn)
        c.heat = caseSettings.thermalMode == 0 ? HeatForm::temperature : HeatForm::enthalpy;
    return c;
}

} // namespace fluvane
