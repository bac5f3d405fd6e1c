// Splits the sides of a channel into zones of one velocity.
#include "profile_zones.h"

#include "plane_fields.h"

#include <algorithm>
#include <utility>

namespace fluvane::validation {

ProfileZones::ProfileZones(int n, double length, double height, std::function<double(double)> profile,
                           bool bothSides)
    : m_n(n), m_length(length), m_height(height), m_profile(std::move(profile)), m_bothSides(bothSides) {}

PlaneMesh ProfileZones::mesh(PlaneMesh box) const {
    box.zoneNames = QStringList{"bottom", "top"};
    for (int j = 0; j < m_n; ++j)
        box.zoneNames << QString("in%1").arg(j);
    for (int j = 0; j < (m_bothSides ? m_n : 1); ++j)
        box.zoneNames << QString("out%1").arg(j);
    const int n = m_n;
    const double length = m_length, height = m_height;
    const bool both = m_bothSides;
    box.zoneOf = [n, length, height, both, inside = std::move(box.zoneOf)](double x, double y) {
        const int slice = std::clamp(static_cast<int>(y / height * n), 0, n - 1);
        if (x < 1e-9 * length)
            return 2 + slice;
        if (x > length * (1.0 - 1e-9))
            return 2 + n + (both ? slice : 0);
        return y < 0.5 * height ? 0 : 1;
    };
    return box;
}

std::vector<support::Zone> ProfileZones::zones(const support::Zone& bottom, const support::Zone& top,
                                               const support::Zone& inletHeat) const {
    std::vector<support::Zone> zones{bottom, top};
    for (int side = 0; side < (m_bothSides ? 2 : 1); ++side)
        for (int j = 0; j < m_n; ++j) {
            support::Zone slice = inletHeat;
            if (side == 1)
                slice = {};
            slice.ux = m_profile(m_height * (j + 0.5) / m_n);
            zones.push_back(slice);
        }
    if (!m_bothSides)
        zones.push_back(support::outflowZone());
    return zones;
}

QStringList ProfileZones::describe(const PlaneMesh& plane, const PlaneSetUp& setUp, const QString& inlet,
                                   const QString& outletWords) const {
    PlaneSetUp walls = setUp;
    walls.zones.resize(2);
    QStringList lines = validation::describe(plane, walls);
    lines[3] += QString("; left, one zone a cell (%1): \"No Slip->Translation\", %2 at its middle; ")
                    .arg(m_n)
                    .arg(inlet) +
                outletWords;
    return lines;
}

double ProfileZones::massIn() const {
    double total = 0.0;
    for (int j = 0; j < m_n; ++j)
        total -= massOutThrough(2 + j);
    return total;
}

double ProfileZones::massOut() const {
    double total = 0.0;
    for (int j = 0; j < (m_bothSides ? m_n : 1); ++j)
        total += massOutThrough(2 + m_n + j);
    return total;
}

} // namespace fluvane::validation
