// A row of per-velocity numbers in vector registers, as wide as the instruction set it is compiled for.
#pragma once

#include "solver2d/force_inline.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

// FLUVANE_ISA names the instruction set a kernel file is compiled for; everything here lives in a namespace
// of that name, so that copies for different instruction sets never meet in the linker.
#ifndef FLUVANE_ISA
#define FLUVANE_ISA baseline
#endif

namespace fluvane::FLUVANE_ISA {

#if defined(__GNUC__) || defined(__clang__)
#define FLUVANE_VECTORS 1
#if defined(__AVX512F__)
inline constexpr int laneCount = 8;
#elif defined(__AVX__)
inline constexpr int laneCount = 4;
#else
inline constexpr int laneCount = 2;
#endif
#else
#define FLUVANE_VECTORS 0
inline constexpr int laneCount = 1;
#endif

template <int N>
struct Lanes {
    using type = double;
};
#if FLUVANE_VECTORS
template <>
struct Lanes<2> {
    using type = double __attribute__((vector_size(16)));
};
template <>
struct Lanes<4> {
    using type = double __attribute__((vector_size(32)));
};
template <>
struct Lanes<8> {
    using type = double __attribute__((vector_size(64)));
};
#endif

/// The widest vector that N numbers fill.
constexpr int headLanes(int n) {
    int lanes = laneCount;
    while (lanes > n)
        lanes /= 2;
    return lanes;
}

/// N numbers with element-wise arithmetic: a head of whole vectors and a shorter rest, so that nothing is
/// padded. All operations round each element just as the same operation on single numbers does.
template <int N>
struct Row {
    static constexpr int size = N;
    static constexpr int headSize = headLanes(N);
    using Head = typename Lanes<headSize>::type;
    Head head;
    Row<N - headSize> rest;

    FLUVANE_FORCE_INLINE static Row load(const double* p) {
        Row r;
        std::memcpy(&r.head, p, sizeof(Head));
        r.rest = Row<N - headSize>::load(p + headSize);
        return r;
    }
    FLUVANE_FORCE_INLINE void store(double* p) const {
        std::memcpy(p, &head, sizeof(Head));
        rest.store(p + headSize);
    }
    FLUVANE_FORCE_INLINE static Row zero() { return {Head{}, Row<N - headSize>::zero()}; }

    /// a where the element of `side` is >= 0, b elsewhere (NaN included).
    FLUVANE_FORCE_INLINE static Row select(const Row& side, const Row& a, const Row& b) {
        return {side.head >= 0.0 ? a.head : b.head, Row<N - headSize>::select(side.rest, a.rest, b.rest)};
    }
    FLUVANE_FORCE_INLINE static Row select(const Row& side, double a, double b) {
        return select(side, Row::zero() + a, Row::zero() + b);
    }

    FLUVANE_FORCE_INLINE friend Row operator+(const Row& a, const Row& b) {
        return {a.head + b.head, a.rest + b.rest};
    }
    FLUVANE_FORCE_INLINE friend Row operator-(const Row& a, const Row& b) {
        return {a.head - b.head, a.rest - b.rest};
    }
    FLUVANE_FORCE_INLINE friend Row operator*(const Row& a, const Row& b) {
        return {a.head * b.head, a.rest * b.rest};
    }
    FLUVANE_FORCE_INLINE friend Row operator+(const Row& a, double b) { return {a.head + b, a.rest + b}; }
    FLUVANE_FORCE_INLINE friend Row operator+(double a, const Row& b) { return {a + b.head, a + b.rest}; }
    FLUVANE_FORCE_INLINE friend Row operator-(const Row& a, double b) { return {a.head - b, a.rest - b}; }
    FLUVANE_FORCE_INLINE friend Row operator-(double a, const Row& b) { return {a - b.head, a - b.rest}; }
    FLUVANE_FORCE_INLINE friend Row operator*(const Row& a, double b) { return {a.head * b, a.rest * b}; }
    FLUVANE_FORCE_INLINE friend Row operator*(double a, const Row& b) { return {a * b.head, a * b.rest}; }
};

template <>
struct Row<0> {
    FLUVANE_FORCE_INLINE static Row load(const double*) { return {}; }
    FLUVANE_FORCE_INLINE void store(double*) const {}
    FLUVANE_FORCE_INLINE static Row zero() { return {}; }
    FLUVANE_FORCE_INLINE static Row select(const Row&, const Row&, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator+(const Row&, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator-(const Row&, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator*(const Row&, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator+(const Row&, double) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator+(double, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator-(const Row&, double) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator-(double, const Row&) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator*(const Row&, double) { return {}; }
    FLUVANE_FORCE_INLINE friend Row operator*(double, const Row&) { return {}; }
};

/// Asks for the lines of `count` numbers that will be needed soon.
FLUVANE_FORCE_INLINE void prefetchNumbers([[maybe_unused]] const double* p,
                                          [[maybe_unused]] std::ptrdiff_t count) {
#if FLUVANE_VECTORS
    constexpr std::ptrdiff_t line = 8;
    for (std::ptrdiff_t n = 0; n < count; n += line)
        __builtin_prefetch(p + n);
    if (count % line != 1)
        __builtin_prefetch(p + count - 1);
#endif
}

/// Calls body(i, n) for groups of n = 4 records, with n as a compile-time constant, and for the last ones one
/// by one: records of a group have nothing to wait for in each other.
template <class Body>
FLUVANE_FORCE_INLINE void overGroups(std::ptrdiff_t first, std::ptrdiff_t last, const Body& body) {
    constexpr int group = 4;
    std::ptrdiff_t i = first;
    for (; i + group <= last; i += group)
        body(i, std::integral_constant<int, group>{});
    for (; i < last; ++i)
        body(i, std::integral_constant<int, 1>{});
}

/// The longest piece of a row that is worked on at once: up to nine numbers whole, longer rows in pieces of
/// two vectors, of which a kernel keeps several in registers.
template <int Q>
constexpr int pieceSize() {
    constexpr int two = 2 * laneCount < 4 ? 4 : 2 * laneCount;
    return Q <= 9 || Q < two ? Q : two;
}

template <int Q, int First, class Body>
FLUVANE_FORCE_INLINE void overPieces(const Body& body) {
    constexpr int size = Q - First < pieceSize<Q>() ? Q - First : pieceSize<Q>();
    body(Row<size>{}, First);
    if constexpr (First + size < Q)
        overPieces<Q, First + size>(body);
}

/// Calls body(row, k) for pieces that together cover velocities 0 .. count - 1: pieces of sizes known at
/// compile time when Q is, pieces of four and of one when it is not (Q = 0). `row` only carries the type.
template <int Q, class Body>
FLUVANE_FORCE_INLINE void overVelocities([[maybe_unused]] int count, const Body& body) {
    if constexpr (Q > 0) {
        overPieces<Q, 0>(body);
    } else {
        int k = 0;
        for (; k + 4 <= count; k += 4)
            body(Row<4>{}, k);
        for (; k < count; ++k)
            body(Row<1>{}, k);
    }
}

} // namespace fluvane::FLUVANE_ISA
