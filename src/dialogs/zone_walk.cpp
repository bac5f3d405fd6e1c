// The steps among the boundary zones and the face range of each.
#include "dialogs/zone_walk.h"

#include "mesh/mesh.h"

#include <algorithm>

namespace fluvane {

std::int32_t ZoneWalk::index() const {
    return std::clamp(m_index, 0, std::max(mesh.zoneCount - 1, 0));
}

bool ZoneWalk::onLastZone() const {
    return index() + 1 >= mesh.zoneCount;
}

bool ZoneWalk::forward() {
    m_index = index();
    if (onLastZone())
        return false;
    ++m_index;
    return true;
}

void ZoneWalk::back() {
    m_index = std::max(index() - 1, 0);
}

std::int32_t ZoneWalk::firstFace() const {
    const std::int32_t i = index();
    return i == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[static_cast<std::size_t>(i - 1)];
}

std::int32_t ZoneWalk::endFace() const {
    return mesh.zoneCount > 0 ? mesh.zoneLastFace[static_cast<std::size_t>(index())] : mesh.interiorFaceCount;
}

QString ZoneWalk::name() const {
    const auto i = static_cast<std::size_t>(index());
    return i < mesh.zoneNames.size() ? mesh.zoneNames[i] : QString();
}

} // namespace fluvane
