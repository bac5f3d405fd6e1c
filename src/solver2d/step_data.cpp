// Gathers the addresses of the mesh.
#include "solver2d/step_data.h"

#include "mesh/mesh.h"

namespace fluvane {

namespace {

template <class Data>
Data withPools(Data d) {
    CellPools& p = mesh.cellPools;
    d.cellCount = mesh.cellCount;
    d.faceCount = mesh.totalFaceCount();
    d.neighbourStart = mesh.neighbourStart.data();
    d.neighbours = mesh.neighbourSlots.empty() ? mesh.neighbourList.data() : mesh.neighbourSlots.data();
    d.faceCells = mesh.faceCellSlots.data();
    d.fTilde = p.fTilde.data();
    d.fBarPlus = p.fBarPlus.data();
    d.fTildePlus = p.fTildePlus.data();
    d.gTilde = p.gTilde.data();
    d.gBarPlus = p.gBarPlus.data();
    d.gTildePlus = p.gTildePlus.data();
    d.gradFBarPlus = p.gradFBarPlus.data();
    d.gradGBarPlus = p.gradGBarPlus.data();
    d.fFace = mesh.facePools.fFace.data();
    d.gFace = mesh.facePools.gFace.data();
    return d;
}

} // namespace

StepData2D stepData2D() {
    StepData2D d;
    d.cells = mesh.cells2D.data();
    d.faces = mesh.faces2D.data();
    d.cellFaces = mesh.cellFaceSlots2D.data();
    d.lsq = mesh.lsqList2D.data();
    return withPools(d);
}

StepData3D stepData3D() {
    StepData3D d;
    d.cells = mesh.cells3D.data();
    d.faces = mesh.faces3D.data();
    d.cellFaces = mesh.cellFaceSlots3D.data();
    d.lsq = mesh.lsqList3D.data();
    return withPools(d);
}

} // namespace fluvane
