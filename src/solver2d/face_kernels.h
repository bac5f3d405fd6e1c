// The kernels of one 2D face.
#pragma once

namespace fluvane {

struct FaceRecord;

/// Upwind reconstruction of the half-step bar distributions at the face midpoint and the face moments.
/// A velocity tangential to the face takes the first cell. Heat before flow.
void reconstructInteriorFace(FaceRecord& face);

/// Turns the face's bar distributions into the distributions at the half step. Heat before flow; deliberate:
/// heat uses the temperature-form equilibrium and the heat source in both thermal modes.
void recoverFaceDistributions(FaceRecord& face);

/// Bar distributions and moments of a boundary face from its conditions. Velocities are visited in order and
/// each outgoing one sets its opposite; a tangential pair is visited twice, the later visit wins.
void treatBoundaryFace(FaceRecord& face);

} // namespace fluvane
