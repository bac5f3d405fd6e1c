// The kernels of one 3D face.
#pragma once

namespace fluvane {

struct FaceRecord3D;

/// Upwind reconstruction of the half-step bar distributions at the face centre, the face moments, and the
/// distributions recovered from them. A velocity tangential to the face takes c0. Heat before flow;
/// deliberate: the heat part recovers with the face velocity of the previous step. Without heat the face
/// temperature is 0.
void reconstructInteriorFace3D(FaceRecord3D& face);

/// The heat distribution of a boundary face from its thermal condition; nothing without heat. Velocities are
/// visited in order and each outgoing one sets its opposite; a tangential pair is visited twice, the later
/// visit wins.
void treatBoundaryFace3DHeat(FaceRecord3D& face);

/// The flow distribution of a boundary face from its flow condition; nothing without flow. Deliberate: the
/// density stays as assigned, and an outflow takes u and v from its cell, but not w.
void treatBoundaryFace3DFlow(FaceRecord3D& face);

} // namespace fluvane
