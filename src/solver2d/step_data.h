// Where the records and pools of the mesh lie, for the loops of a step.
#pragma once

#include "velocity/velocity_set.h"

#include <cstdint>

namespace fluvane {

struct CellRecord;
struct CellRecord3D;
struct FaceRecord;
struct FaceRecord3D;

/// Plain addresses of the mesh's records and pools: a kernel finds an array from a record's index without
/// touching the record.
template <int D, class Cell, class Face, class Weights>
struct StepData {
    static constexpr int dimensions = D;
    using CellType = Cell;
    using FaceType = Face;

    Cell* cells = nullptr;
    Face* faces = nullptr;
    const std::int32_t* neighbourStart = nullptr;
    const std::int32_t* neighbours = nullptr;
    const Weights* lsq = nullptr;
    double* fTilde = nullptr;
    double* fBarPlus = nullptr;
    double* fTildePlus = nullptr;
    double* gTilde = nullptr;
    double* gBarPlus = nullptr;
    double* gTildePlus = nullptr;
    double* gradFBarPlus = nullptr; ///< D rows of Q a cell: all x, then all y, then all z
    double* gradGBarPlus = nullptr;
    double* fFace = nullptr;
    double* gFace = nullptr;
};

using StepData2D = StepData<2, CellRecord, FaceRecord, Vec2>;
using StepData3D = StepData<3, CellRecord3D, FaceRecord3D, Vec3>;

/// The present mesh's addresses.
StepData2D stepData2D();
StepData3D stepData3D();

} // namespace fluvane
