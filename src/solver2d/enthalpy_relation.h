// The enthalpy relation as a value: the constants of one step, no process-wide state.
#pragma once

#include "mesh/force_inline.h"

namespace fluvane {

struct CaseSettings;

/// Piecewise linear relation of a substance that melts between Tm - dTm (enthalpy Hsolidus) and Tm + dTm
/// (enthalpy Hliquidus).
struct EnthalpyRelation {
    double Tm = 0.0;
    double dTm = 0.0;
    double latentHeat = 0.0;
    double cpSolid = 1.0;
    double cpLiquid = 1.0;
    double Hsolidus = 0.0;
    double Hliquidus = 0.0;

    FLUVANE_FORCE_INLINE double mushySlope() const {
        return latentHeat / (2.0 * dTm) + (cpLiquid + cpSolid) / 2.0;
    }

    FLUVANE_FORCE_INLINE double enthalpyOf(double T) const {
        const double x = T - Tm;
        if (T < Tm - dTm)
            return cpSolid * dTm + cpSolid * x;
        if (T <= Tm + dTm)
            return mushySlope() * x + ((cpLiquid + cpSolid) / 2.0) * dTm + latentHeat / 2.0;
        return cpSolid * dTm + cpLiquid * x + latentHeat;
    }

    FLUVANE_FORCE_INLINE double temperatureOf(double H) const {
        if (H < Hsolidus)
            return (H - dTm * cpSolid) / cpSolid + Tm;
        if (H <= Hliquidus)
            return (H - ((cpLiquid + cpSolid) / 2.0) * dTm - latentHeat / 2.0) / mushySlope() + Tm;
        return (H - dTm * cpSolid - latentHeat) / cpLiquid + Tm;
    }

    FLUVANE_FORCE_INLINE double liquidFraction(double H) const {
        if (H < Hsolidus)
            return 0.0;
        if (H > Hliquidus)
            return 1.0;
        return (H - Hsolidus) / (Hliquidus - Hsolidus);
    }
};

/// The relation with the settings as they stand.
EnthalpyRelation enthalpyRelation(const CaseSettings& settings);

} // namespace fluvane
