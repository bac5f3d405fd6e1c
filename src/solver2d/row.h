// A row of per-velocity numbers in vector registers, as wide as the instruction set it is compiled for.
#pragma once

#include "mesh/force_inline.h"

#include <cstddef>
#include <cstdint>
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

/// The vector for a rest of n numbers behind a head of so many lanes: no narrower than four where the head is
/// not, because a row's last number alone costs as much in a vector of four as in one of two.
constexpr int restLanes(int n, int lanes) {
    return lanes > 4 && n <= 4 ? 4 : lanes;
}

/// N numbers with element-wise arithmetic: a head of one vector and the rest. A rest shorter than its vector
/// takes in the last numbers of the head, so that all vectors are whole and nothing is padded; numbers that
/// are held twice are the same. All operations round each element just as the same operation on single
/// numbers does.
template <int N>
struct Row {
    static constexpr int size = N;
    static constexpr int headSize = headLanes(N);
    static constexpr int restSize = N == headSize      ? 0
                                    : N < 2 * headSize ? restLanes(N - headSize, headSize)
                                                       : N - headSize;
    static constexpr int restStart = N - restSize;
    using Head = typename Lanes<headSize>::type;
    using Rest = Row<restSize>;
    Head head;
    Rest rest;

    FLUVANE_FORCE_INLINE static Row load(const double* p) {
        Row r;
        std::memcpy(&r.head, p, sizeof(Head));
        r.rest = Rest::load(p + restStart);
        return r;
    }
    FLUVANE_FORCE_INLINE void store(double* p) const {
        std::memcpy(p, &head, sizeof(Head));
        rest.store(p + restStart);
    }
    FLUVANE_FORCE_INLINE static Row zero() { return {Head{}, Rest::zero()}; }
    /// N times the same number, which less 0 is itself, -0 included.
    FLUVANE_FORCE_INLINE static Row all(double a) { return {a - Head{}, Rest::all(a)}; }

    /// a where the element of `side` is >= 0, b elsewhere (NaN included).
    FLUVANE_FORCE_INLINE static Row select(const Row& side, const Row& a, const Row& b) {
        return {side.head >= 0.0 ? a.head : b.head, Rest::select(side.rest, a.rest, b.rest)};
    }
    FLUVANE_FORCE_INLINE static Row select(const Row& side, double a, double b) {
        return select(side, all(a), all(b));
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
    FLUVANE_FORCE_INLINE static Row all(double) { return {}; }
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

/// Calls body(first, last) for blocks of records so short that what two passes over a block have in common is
/// still in the nearest cache at the second.
template <class Body>
FLUVANE_FORCE_INLINE void overBlocks(std::int32_t first, std::int32_t last, const Body& body) {
    constexpr std::int32_t block = 32;
    for (std::int32_t begin = first; begin < last; begin += block)
        body(begin, last - begin < block ? last : begin + block);
}

/// How many of `left` numbers are worked on at once: up to nine whole, more in pieces of three vectors, of
/// which a kernel keeps several in registers, or of two where three would leave less than a vector.
constexpr int pieceSize(int left) {
    constexpr int most = 3 * laneCount;
    if (left <= 9 || left <= most)
        return left;
    return left - most >= laneCount ? most : most - laneCount;
}

template <int Q, int First, class Body>
FLUVANE_FORCE_INLINE void overPieces(const Body& body) {
    constexpr int size = pieceSize(Q - First);
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
