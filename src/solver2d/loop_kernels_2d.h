// The loops of a 2D step as functions over a range of records, one set per instruction set.
#pragma once

#include "solver2d/step_constants.h"

#include <cstdint>

namespace fluvane {

struct CellRecord;
struct FaceRecord;

/// Plain addresses of the mesh's records and pools: a kernel finds an array from a record's index without
/// touching the record.
struct StepData2D {
    CellRecord* cells = nullptr;
    FaceRecord* faces = nullptr;
    const std::int32_t* neighbourStart = nullptr;
    const std::int32_t* neighbours = nullptr;
    const Vec2* lsq = nullptr;
    double* fTilde = nullptr;
    double* fBarPlus = nullptr;
    double* fTildePlus = nullptr;
    double* gTilde = nullptr;
    double* gBarPlus = nullptr;
    double* gTildePlus = nullptr;
    double* gradFBarPlus = nullptr;
    double* gradGBarPlus = nullptr;
    double* fFace = nullptr;
    double* gFace = nullptr;
};

/// The present mesh's addresses.
StepData2D stepData2D();

/// One loop body over records first .. last - 1.
using LoopKernel2D = void (*)(const StepConstants&, const StepData2D&, std::int32_t first, std::int32_t last);

struct LoopKernels2D {
    LoopKernel2D collide;     ///< cells
    LoopKernel2D gradients;   ///< cells
    LoopKernel2D reconstruct; ///< interior faces
    LoopKernel2D boundary;    ///< boundary faces
    LoopKernel2D recover;     ///< all faces
    LoopKernel2D update;      ///< cells
};

enum class InstructionSet { baseline, avx2, avx512 };

/// The widest instruction set that both the program was built with and the machine has.
InstructionSet widestInstructionSet();

/// Chooses the kernels of every later step; one the machine does not have is refused with false. At start it
/// is the widest. Results are the same bits with each.
bool useInstructionSet(InstructionSet set);

/// The set in use.
InstructionSet instructionSetInUse();

/// The kernels of the set in use for the number of velocities.
const LoopKernels2D& loopKernels2D(int velocityCount);

} // namespace fluvane
