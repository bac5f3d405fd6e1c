// Where a boundary wizard stands among the boundary zones of the mesh.
#pragma once

#include <QString>
#include <cstdint>

namespace fluvane {

/// The current zone index of a wizard, 0-based. Every call looks at the mesh as it is then: an index that a
/// smaller mesh no longer has becomes its last zone, and without boundary zones nothing is out of range.
class ZoneWalk {
public:
    std::int32_t index() const;

    /// True on the last zone, and when there is no zone at all.
    bool onLastZone() const;

    /// Goes to the next zone; false, without a move, when there is none.
    bool forward();

    /// Goes to the previous zone, if there is one.
    void back();

    /// The zone's faces: first (0-based) and one past the last. Empty without boundary zones.
    std::int32_t firstFace() const;
    std::int32_t endFace() const;

    /// The zone's line of `zoneNames`, empty if there is none.
    QString name() const;

private:
    std::int32_t m_index = 0;
};

} // namespace fluvane
