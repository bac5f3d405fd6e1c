// The lattice properties of a case and the listing of the velocity set.
#pragma once

#include <QStringList>

namespace fluvane {

/// Stores CFL and RT (squared lattice sound speed), derives the sound speed and multiplies the velocities of
/// the current dimension by sqrt(3 RT).
///
/// Deliberate: the table is scaled in place, so a second call scales it once more; the velocity file is
/// expected to be read again before that.
void setLatticeProperties(double CFL, double RT);

/// The lines that list the velocity set: a heading, then one line a velocity, numbers with 6 significant
/// digits. Deliberate: the third number of a 3D line is the x component again.
QStringList velocityListing();

} // namespace fluvane
