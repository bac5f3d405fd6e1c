// The case settings' one instance and the constants of the enthalpy relation.
#include "dialogs/case_settings.h"

namespace fluvane {

CaseSettings caseSettings;

void setPhaseChange(double Ste, double Ts, double Tl, double Fl) {
    constexpr double mushyHalfWidth = 0.0001;
    CaseSettings& s = caseSettings;
    s.Ts = Ts;
    s.Tl = Tl;
    s.Tm = (Ts + Tl) / 2 + mushyHalfWidth;
    s.dTm = mushyHalfWidth;
    s.Ste = Ste;
    if (s.thermalScaleKind == 0)
        s.latentHeat = s.dT / s.Ste;
    else if (s.thermalScaleKind == 1)
        s.latentHeat = s.L * s.dT / s.Ste / s.alpha;
    s.Hsolidus = 0.0;
    s.Fl0 = Fl;
    s.Hliquidus = (s.cpLiquid + s.cpSolid) * mushyHalfWidth + s.latentHeat;
}

} // namespace fluvane
