// Runs one loop body on one record of the mesh.
#pragma once

#include "mesh/mesh.h"
#include "solver2d/loop_kernels_2d.h"
#include "solver3d/loop_kernels_3d.h"

namespace fluvane {

/// The index of a record that lives in one of the mesh's record arrays.
template <class Record>
std::int32_t indexIn(const RecordTable<Record>& records, const Record& record) {
    return static_cast<std::int32_t>(records.slotOf(&record));
}

/// Applies the chosen body of the kernels in use to record i alone, with the settings as they stand.
inline void runOnRecord(LoopKernel2D LoopKernels2D::*kernel, std::int32_t i) {
    const StepConstants constants = stepConstants2D();
    (loopKernels2D(constants.velocityCount).*kernel)(constants, stepData2D(), i, i + 1);
}

inline void runOnRecord(LoopKernel3D LoopKernels3D::*kernel, std::int32_t i,
                        const StepConstants& constants = stepConstants3D()) {
    (loopKernels3D(constants.velocityCount).*kernel)(constants, stepData3D(), i, i + 1);
}

} // namespace fluvane
