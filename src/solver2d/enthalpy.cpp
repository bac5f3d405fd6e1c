// The enthalpy relation with the process-wide settings.
#include "solver2d/enthalpy.h"

#include "dialogs/case_settings.h"
#include "solver2d/enthalpy_relation.h"

namespace fluvane {

EnthalpyRelation enthalpyRelation(const CaseSettings& settings) {
    return {settings.Tm,       settings.dTm,      settings.latentHeat, settings.cpSolid,
            settings.cpLiquid, settings.Hsolidus, settings.Hliquidus};
}

double enthalpyOf(double T) {
    return enthalpyRelation(caseSettings).enthalpyOf(T);
}

double temperatureOf(double H) {
    return enthalpyRelation(caseSettings).temperatureOf(H);
}

double liquidFraction(double H) {
    return enthalpyRelation(caseSettings).liquidFraction(H);
}

} // namespace fluvane
