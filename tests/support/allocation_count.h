// How often a test program asked for memory.
#pragma once

#include <cstdint>

namespace fluvane::support {

/// How often all threads together have called `operator new` for types without an alignment of their own;
/// the mesh's arrays, which come from the system by pages, are not counted. A program that links this
/// function replaces the operators by ones that count. 0 where a sanitizer has operators of its own.
std::int64_t allocationCount();

/// Whether they are counted.
bool countsAllocations();

} // namespace fluvane::support
