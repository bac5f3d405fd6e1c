// The instruction set that the kernels of a step use.
#pragma once

namespace fluvane {

enum class InstructionSet { baseline, avx2, avx512 };

/// The widest instruction set that both the program was built with and the machine has.
InstructionSet widestInstructionSet();

/// Chooses the kernels of every later step; one the machine does not have is refused with false. At start it
/// is the widest. Results are the same bits with each.
bool useInstructionSet(InstructionSet set);

/// The set in use.
InstructionSet instructionSetInUse();

} // namespace fluvane
