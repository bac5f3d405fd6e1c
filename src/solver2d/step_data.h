// Where the records and pools of the mesh lie, for the loops of a step.
#pragma once

#include "mesh/records.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fluvane {

/// Plain addresses of the mesh's records and pools: a kernel finds an array from a record's index without
/// touching the record.
template <int D, class Cell, class Face, class Weights>
struct StepData {
    static constexpr int dimensions = D;
    using CellType = Cell;
    using FaceType = Face;

    Cell* cells = nullptr; ///< in the order of storage, like everything here
    std::ptrdiff_t cellCount = 0;
    Face* faces = nullptr;
    std::ptrdiff_t faceCount = 0;
    const std::array<std::int32_t, 2>* faceCells =
        nullptr; ///< where a face's cells lie; null: at their numbers
    const std::array<std::int32_t, Cell::maxFaces>* cellFaces = nullptr; ///< the same of a cell's faces
    const std::int32_t* neighbourStart = nullptr;
    const std::int32_t* neighbours = nullptr; ///< where they lie
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
