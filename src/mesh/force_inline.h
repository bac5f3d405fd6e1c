// The macros that keep helpers inside the function that calls them.
#pragma once

// The kernels are compiled once per instruction set. A helper that was not inlined would be one shared
// function of which the linker keeps any copy, possibly one with instructions that the machine does not have.
#if defined(__GNUC__) || defined(__clang__)
#define FLUVANE_FORCE_INLINE [[gnu::always_inline]] inline
#elif defined(_MSC_VER)
#define FLUVANE_FORCE_INLINE __forceinline
#else
#define FLUVANE_FORCE_INLINE inline
#endif

// Put before a kernel: everything that it calls, bodies passed to a loop as well, becomes part of it, in
// builds that ask for this.
#if defined(FLUVANE_FLATTEN_KERNELS) && (defined(__GNUC__) || defined(__clang__))
#define FLUVANE_FLATTEN [[gnu::flatten]]
#else
#define FLUVANE_FLATTEN
#endif
