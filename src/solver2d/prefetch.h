// What the loops of a step ask the caches for before they need it, which changes no result. Compiled once per
// instruction set, each in its own namespace.
#pragma once

#include "solver2d/record_places.h"
#include "solver2d/row.h"
#include "solver2d/step_constants.h"
#include "solver2d/step_data.h"

namespace fluvane::FLUVANE_ISA {

// ---- lines -----------------------------------------------------------------------------------------------

/// Asks for the lines in which every eighth of `count` numbers lies, which will be needed soon: all lines of
/// the numbers, or all but the last.
FLUVANE_FORCE_INLINE void prefetchEighths([[maybe_unused]] const double* p,
                                          [[maybe_unused]] std::ptrdiff_t count) {
#if FLUVANE_VECTORS
    for (std::ptrdiff_t n = 0; n < count; n += 8)
        __builtin_prefetch(p + n);
#endif
}

/// Asks for all lines of `count` numbers.
FLUVANE_FORCE_INLINE void prefetchNumbers(const double* p, std::ptrdiff_t count) {
    prefetchEighths(p, count);
    if (count % 8 != 1)
        prefetchEighths(p + count - 1, 1);
}

/// Asks the second-level cache for the lines of `count` numbers that will be needed after a while, with those
/// before and behind them: a line that only the last of them begins comes with the next.
template <class Number>
FLUVANE_FORCE_INLINE void prefetchLater([[maybe_unused]] const Number* p,
                                        [[maybe_unused]] std::ptrdiff_t count) {
#if FLUVANE_VECTORS
    constexpr int secondLevel = 2;
    constexpr std::ptrdiff_t line = 64 / sizeof(Number);
    __builtin_prefetch(p, 0, secondLevel);
    for (std::ptrdiff_t n = line; n + 1 < count; n += line)
        __builtin_prefetch(p + n, 0, secondLevel);
#endif
}

// ---- records in order ------------------------------------------------------------------------------------

/// How many records ahead of the one at work a loop in order asks the nearest cache for what it will read.
inline constexpr std::ptrdiff_t recordsAhead = 16;

/// How many records ahead a loop asks the second-level cache for what lies in order. The processor foresees
/// that by itself, but as a rule only up to the end of a page of 4 kB, which holds a few dozen rows.
/// Distances of 32 to 128 records do about as well in 2D; shorter ones do worse in 3D.
template <int D>
inline constexpr std::ptrdiff_t recordsLater = D == 3 ? 96 : 64;

/// The record that is asked for before record i is worked on: none behind `end`.
template <class Data>
FLUVANE_FORCE_INLINE std::ptrdiff_t laterThan(std::ptrdiff_t i, std::ptrdiff_t end) {
    const std::ptrdiff_t later = i + recordsLater<Data::dimensions>;
    return later < end ? later : end - 1;
}

/// Whether the records that others name lie in no order: in 3D whole layers of cells apart, and along a
/// curve, which turns all the time. In a 2D mesh as numbered they are a few rows in order.
template <class Data>
FLUVANE_FORCE_INLINE bool jumps(const Data& d) {
    return Data::dimensions == 3 || d.faceCells;
}

/// Before record i: asks for the moments and the row of one that comes soon and of one that comes later. Of
/// records in order a loop reads one line and leaves out the rest.
template <int Q, class Data, class Record>
FLUVANE_FORCE_INLINE void prefetchRecord(const StepConstants& c, const Record* records, const double* rows,
                                         std::ptrdiff_t i, std::ptrdiff_t end) {
    const std::ptrdiff_t q = stride<Q>(c);
    const std::ptrdiff_t soon = i + recordsAhead < end ? i + recordsAhead : end - 1;
    prefetchNumbers(&records[soon].rho, 1);
    prefetchEighths(rows + soon * q, q);
    const std::ptrdiff_t later = laterThan<Data>(i, end);
    prefetchLater(&records[later].rho, 1);
    prefetchLater(rows + later * q, q);
}

// ---- collision -------------------------------------------------------------------------------------------

/// Before cell i: asks for what the collision of one distribution reads and writes.
template <int Q, class Data>
FLUVANE_FORCE_INLINE void prefetchCollision(const StepConstants& c, const Data& d, const double* tilde,
                                            const double* plus, const double* bar, std::ptrdiff_t i,
                                            std::ptrdiff_t end) {
    prefetchRecord<Q, Data>(c, d.cells, tilde, i, end);
    const std::ptrdiff_t q = stride<Q>(c);
    const std::ptrdiff_t later = laterThan<Data>(i, end);
    prefetchLater(plus + later * q, q);
    prefetchLater(bar + later * q, q);
}

// ---- gradients -------------------------------------------------------------------------------------------

/// How many cells ahead of the one at work the rows of neighbours are asked for.
template <int D>
inline constexpr std::ptrdiff_t cellsAhead = D == 3 ? 3 : 5;

/// Before cell i: asks for the lists and the gradients of a later one, and for the rows of the neighbours of
/// one that comes soon, which come by themselves where they lie in order.
template <int Q, class Data>
FLUVANE_FORCE_INLINE void prefetchGradients(const StepConstants& c, const Data& d, const double* barPlus,
                                            const double* gradient, std::ptrdiff_t i, std::ptrdiff_t last) {
    constexpr int D = Data::dimensions;
    const std::ptrdiff_t q = stride<Q>(c);
    const std::ptrdiff_t later = laterThan<Data>(i, last);
    const std::ptrdiff_t start = d.neighbourStart[later];
    const std::ptrdiff_t count = d.neighbourStart[later + 1] - start;
    if (count > 0) {
        prefetchLater(d.neighbours + start, count);
        prefetchLater(&d.lsq[start].x, D * count);
    }
    prefetchLater(gradient + D * later * q, D * q);
    const std::ptrdiff_t soon = i + cellsAhead<D>;
    if (!jumps(d) || soon >= last)
        return;
    for (std::int32_t j = d.neighbourStart[soon]; j < d.neighbourStart[soon + 1]; ++j)
        prefetchEighths(barPlus + d.neighbours[j] * q, q);
}

// ---- faces -----------------------------------------------------------------------------------------------

/// How many faces ahead of those at work the rows of their cells are asked for: far enough for memory to
/// answer, near enough for the nearest cache to hold them until they are used.
template <int D>
inline constexpr std::ptrdiff_t facesAhead = D == 3 ? 4 : 8;

/// Asks the nearest cache, or the second-level one for what comes later, for what the reconstruction of one
/// distribution reads of a cell.
template <int Q, bool comesLater, class Data>
FLUVANE_FORCE_INLINE void prefetchSide(const StepConstants& c, const Data& d, std::ptrdiff_t cell,
                                       const double* barPlus, const double* gradient) {
    constexpr int D = Data::dimensions;
    const std::ptrdiff_t q = stride<Q>(c);
    if constexpr (comesLater) {
        prefetchLater(&d.cells[cell].xc, 1);
        prefetchLater(barPlus + cell * q, q);
        prefetchLater(gradient + D * q * cell, D * q);
    } else {
        prefetchNumbers(&d.cells[cell].xc, 1);
        prefetchNumbers(barPlus + cell * q, q);
        prefetchNumbers(gradient + D * q * cell, D * q);
    }
}

/// Asks for what the reconstruction of one distribution on faces first .. first + N - 1, as far as they come
/// before `last`, reads of their cells, and of a cell that comes later than the second of each. The first
/// cells come in order; where the others jump, these have left the nearest cache.
template <int Q, int N, class Data>
FLUVANE_FORCE_INLINE void prefetchSides(const StepConstants& c, const Data& d, std::ptrdiff_t first,
                                        std::ptrdiff_t last, const double* barPlus, const double* gradient) {
    for (std::ptrdiff_t i = first; i < first + N && i < last; ++i) {
        const auto [c0, c1] = sidesOf(d, d.faces[i]);
        if (jumps(d))
            prefetchSide<Q, false>(c, d, c0, barPlus, gradient);
        prefetchSide<Q, false>(c, d, c1, barPlus, gradient);
        prefetchSide<Q, true>(c, d, laterThan<Data>(c1, d.cellCount), barPlus, gradient);
    }
}

/// Before faces first .. first + N - 1: asks for the records and the rows of later ones.
template <int Q, int N, class Data>
FLUVANE_FORCE_INLINE void prefetchFaces(const StepConstants& c, const Data& d, std::ptrdiff_t first,
                                        std::ptrdiff_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < first + N; ++i) {
        const std::ptrdiff_t later = laterThan<Data>(i, last);
        prefetchLater(&d.faces[later].rho, 1);
        prefetchLater(&d.faces[later].xf, 1);
        if (c.heatOn())
            prefetchLater(d.gFace + later * q, q);
        if (c.flowOn)
            prefetchLater(d.fFace + later * q, q);
    }
}

/// Before heat on faces i .. i + N - 1: the rows of flow on the same faces come while heat is worked on, and
/// those of heat on later faces while flow is. Asked for together they would drive each other out.
template <int Q, int N, class Data>
FLUVANE_FORCE_INLINE void prefetchBeforeHeat(const StepConstants& c, const Data& d, std::ptrdiff_t i,
                                             std::ptrdiff_t last) {
    if (c.flowOn)
        prefetchSides<Q, N>(c, d, i, last, d.fBarPlus, d.gradFBarPlus);
    else
        prefetchSides<Q, N>(c, d, i + facesAhead<Data::dimensions>, last, d.gBarPlus, d.gradGBarPlus);
}

/// Before flow on faces i .. i + N - 1.
template <int Q, int N, class Data>
FLUVANE_FORCE_INLINE void prefetchBeforeFlow(const StepConstants& c, const Data& d, std::ptrdiff_t i,
                                             std::ptrdiff_t last) {
    const std::ptrdiff_t later = i + facesAhead<Data::dimensions>;
    if (c.heatOn())
        prefetchSides<Q, N>(c, d, later, last, d.gBarPlus, d.gradGBarPlus);
    else
        prefetchSides<Q, N>(c, d, later, last, d.fBarPlus, d.gradFBarPlus);
}

// ---- update ----------------------------------------------------------------------------------------------

/// Before cell i: asks for the record and the rows of a later one and for the rows of two faces behind its
/// own, as many as a quadrilateral brings along, where all of these lie in order.
template <int Q, class Data>
FLUVANE_FORCE_INLINE void prefetchUpdate(const StepConstants& c, const Data& d, std::ptrdiff_t i) {
    const auto& cell = d.cells[i];
    if (jumps(d) || cell.faceCount == 0)
        return;
    const std::ptrdiff_t q = stride<Q>(c);
    const std::ptrdiff_t later = laterThan<Data>(i, d.cellCount);
    const std::ptrdiff_t face = laterThan<Data>(facesOf(d, cell)[cell.faceCount - 1], d.faceCount);
    prefetchLater(&d.cells[later].rho, sizeof(cell) / sizeof(double));
    if (c.flowOn) {
        prefetchLater(d.fTilde + later * q, q);
        prefetchLater(d.fTildePlus + later * q, q);
        prefetchLater(d.fFace + face * q, 2 * q);
    }
    if (c.heatOn()) {
        prefetchLater(d.gTilde + later * q, q);
        prefetchLater(d.gTildePlus + later * q, q);
        prefetchLater(d.gFace + face * q, 2 * q);
    }
}

} // namespace fluvane::FLUVANE_ISA
