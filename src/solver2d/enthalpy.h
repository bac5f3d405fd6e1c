// Enthalpy, temperature and liquid fraction of a melting substance with a narrow mushy range.
#pragma once

namespace fluvane {

/// Enthalpy of a temperature: 0 at the solidus Tm - dTm, continuous at both ends of the mushy range.
double enthalpyOf(double T);

/// Temperature of an enthalpy, the inverse of enthalpyOf. Both bounds belong to the mushy branch.
double temperatureOf(double H);

/// 0 below the solidus enthalpy, 1 above the liquidus enthalpy, linear between them and at both bounds.
double liquidFraction(double H);

} // namespace fluvane
