// The cases that the reliability tests prepare and run as a user would: from the shipped files.
#pragma once

#include <QString>

namespace fluvane::reliability {

/// How many different cases there are; numbers beyond count round.
int caseCount();

/// Reads velocity and mesh file of a case and sets lattice, physics and walls, whatever was there before.
/// Even numbers are 2D, odd ones 3D; velocity sets, forms and time types follow each other. False, with
/// terminal lines, when a file is refused.
bool prepareCase(int number);

/// The flow of the first case on another 2D mesh file: its last zone slides.
bool prepareFlow(const QString& meshFile);

/// Runs the case that was prepared; what its driver returns.
bool runCase(unsigned threads, int steps, int interval, const QString& file);

} // namespace fluvane::reliability
