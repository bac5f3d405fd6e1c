// Asking the caches for what a pass over the mesh needs soon.
#pragma once

#include "mesh/force_inline.h"

#include <cstddef>

namespace fluvane {

/// Asks for the lines of some bytes that are read or written soon, which changes no result. Functions that do
/// nothing but ask must be forced inline as well: GCC drops calls of those that it thinks have no effect.
FLUVANE_FORCE_INLINE void prefetchBytes([[maybe_unused]] const void* first,
                                        [[maybe_unused]] std::size_t bytes) {
#if defined(__GNUC__) || defined(__clang__)
    constexpr std::size_t line = 64;
    for (std::size_t offset = 0; offset < bytes; offset += line)
        __builtin_prefetch(static_cast<const char*>(first) + offset);
#endif
}

} // namespace fluvane
