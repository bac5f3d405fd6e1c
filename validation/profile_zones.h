// An inlet with a velocity profile: one zone a cell of the inflow side.
#pragma once

#include "plane_run.h"

#include <functional>

namespace fluvane::validation {

/// Splits the sides x = 0 (and, if `bothSides`, x = length) of a channel of height `height` into n zones
/// each, since a zone has one velocity; at most 100 zones in all. Zones: bottom, top, the inlet's cells from
/// below, then the outlet's or one outlet.
class ProfileZones {
public:
    ProfileZones(int n, double length, double height, std::function<double(double)> profile, bool bothSides);

    /// The same cells with these zones.
    PlaneMesh mesh(PlaneMesh box) const;
    /// Conditions: the profile's value at each cell's middle as ux; an outlet that is one zone is "Outflow".
    std::vector<support::Zone> zones(const support::Zone& bottom, const support::Zone& top,
                                     const support::Zone& inletHeat = {}) const;
    /// What to type, the inlet's zones in one phrase.
    QStringList describe(const PlaneMesh& plane, const PlaneSetUp& setUp, const QString& inlet,
                         const QString& outletWords) const;
    /// What the last step carried in through the inlet in a unit of time.
    double massIn() const;
    /// The same out through the outlet.
    double massOut() const;

private:
    int m_n;
    double m_length, m_height;
    std::function<double(double)> m_profile;
    bool m_bothSides;
};

} // namespace fluvane::validation
