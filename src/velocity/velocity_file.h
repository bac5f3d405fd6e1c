// Reads a velocity file (".2Dv" or ".3Dv") into the velocity set.
#pragma once

#include <QString>

namespace fluvane {

/// Reads one velocity a line, "xi_x xi_y a b opp" in 2D or "xi_x xi_y xi_z a b opp" when `caseSettings.is3D`,
/// with weight a / b and the 0-based index opp of the opposite velocity.
///
/// Deliberate: the count is one less than the number of lines tried, so a last line without a line feed is
/// not counted and an empty line adds a row that keeps whatever the table held and the weight of the row
/// before it.
///
/// Returns false, with one problem line in the terminal, when the file cannot be opened (the velocity count
/// is then -1), holds no velocity (count 0) or cannot be accepted: more than 30 rows, a row that does not
/// parse, b = 0, an opposite index that no line of the file has, no memory. What cannot be accepted leaves
/// the velocity set as it was.
bool readVelocityFile(const QString& path);

} // namespace fluvane
