// The kernels of the six loops of a 2D step. Compiled once per instruction set, each in its own namespace.
#include "solver2d/loop_kernels_2d.h"

#include "solver2d/kinetic_kernels.h"

#include <cmath>

namespace fluvane::FLUVANE_ISA {

namespace {

/// The enthalpy equilibrium of the moving velocities; the rest velocity is set apart by `restEnthalpy`.
template <class R>
FLUVANE_FORCE_INLINE R enthalpyRow(const StepConstants& c, int k, double H, double T, const Vector<2>& u) {
    if (c.heat == HeatForm::enthalpyLftf)
        return equilibriumRow<R>(c, k, H, u) + R::load(c.weights + k) * (T - H);
    return equilibriumRow<R>(c, k, T, u);
}

FLUVANE_FORCE_INLINE double restEnthalpy(const StepConstants& c, double H, double T, const Vector<2>& u) {
    const double w = c.weights[0];
    const double restPart = square(u) * c.polynomial.halfInverseRT;
    if (c.heat == HeatForm::enthalpyLftf)
        return w * T + (H - T) - restPart * w * H;
    return w * T * (1.0 - restPart) + (H - T);
}

/// Deliberate: solid below half a liquid fraction, unless the LFTF variant is on.
FLUVANE_FORCE_INLINE bool heldStill(const StepConstants& c, double H) {
    return c.heat == HeatForm::enthalpy && c.relation.liquidFraction(H) < 0.5;
}

// ---- collision ------------------------------------------------------------------------------------------

template <int Q>
void collideEnthalpy(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last,
                     std::int32_t end) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        prefetchCollision<Q>(c, d, d.gTilde, d.gTildePlus, d.gBarPlus, i, end);
        const CellRecord& cell = d.cells[i];
        const double H = cell.H, T = cell.T;
        const Vector<2> u = velocityOf(cell);
        const double* const tilde = d.gTilde + i * q;
        double* const plus = d.gTildePlus + i * q;
        double* const bar = d.gBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            storeCollided(c.collideG, R::load(tilde + k), enthalpyRow<R>(c, k, H, T, u), plus + k, bar + k);
        });
        const double rest = c.collideG.A * tilde[0] + c.collideG.B * restEnthalpy(c, H, T, u);
        plus[0] = rest;
        bar[0] = (3.0 * rest + tilde[0]) * 0.25;
    }
}

template <int Q>
FLUVANE_FLATTEN void collide(const StepConstants& c, const StepData2D& d, std::int32_t first,
                             std::int32_t last) {
    overBlocks(first, last, [&](std::int32_t begin, std::int32_t end) {
        if (c.flowOn)
            collideFlow<Q>(c, d, begin, end, last);
        if (c.heat == HeatForm::temperature)
            collideTemperature<Q>(c, d, begin, end, last);
        else if (c.enthalpyForm())
            collideEnthalpy<Q>(c, d, begin, end, last);
    });
}

// ---- interior faces -------------------------------------------------------------------------------------

/// Temperature, force and, on solid faces, zero velocity from the sum of the reconstructed g.
FLUVANE_FORCE_INLINE void setThermalFace(const StepConstants& c, FaceRecord& face, double total) {
    if (c.heat == HeatForm::temperature) {
        face.T = total;
    } else {
        face.H = total;
        face.T = c.relation.temperatureOf(face.H);
    }
    face.Fx = 0.0;
    face.Fy = buoyancy(c, face.T);
    if (heldStill(c, face.H)) {
        face.u = 0.0;
        face.v = 0.0;
    }
}

/// Faces i .. i + N - 1, heat before flow.
template <int Q, int N>
FLUVANE_FORCE_INLINE void reconstructFaces(const StepConstants& c, const StepData2D& d, std::ptrdiff_t i,
                                           std::ptrdiff_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    FaceRecord* const faces = d.faces + i;
    prefetchFaces<Q, N>(c, d, i, last);
    if (c.heatOn()) {
        prefetchBeforeHeat<Q, N>(c, d, i, last);
        double* const g = d.gFace + i * q;
        double total[N];
        for (int n = 0; n < N; ++n)
            reconstructRow<Q>(c, d, faces[n], d.gBarPlus, d.gradGBarPlus, g + n * q);
        sums<Q>(c, g, total);
        for (int n = 0; n < N; ++n)
            setThermalFace(c, faces[n], total[n]);
    }
    if (c.flowOn) {
        prefetchBeforeFlow<Q, N>(c, d, i, last);
        double* const f = d.fFace + i * q;
        FlowMoments<2> moments[N];
        for (int n = 0; n < N; ++n)
            reconstructRow<Q>(c, d, faces[n], d.fBarPlus, d.gradFBarPlus, f + n * q);
        flowMoments<2, Q>(c, f, moments);
        for (int n = 0; n < N; ++n)
            setFlow(faces[n], moments[n], c.quarterStep);
    }
}

template <int Q>
FLUVANE_FLATTEN void reconstruct(const StepConstants& c, const StepData2D& d, std::int32_t first,
                                 std::int32_t last) {
    overGroups(first, last, [&](std::ptrdiff_t i, auto n) { reconstructFaces<Q, n>(c, d, i, last); });
}

// ---- boundary faces -------------------------------------------------------------------------------------

void boundaryHeat(const StepConstants& c, const StepData2D& d, FaceRecord& face, double* g) {
    const CellRecord& cell = d.cells[sidesOf(d, face).c0];
    const double length = std::sqrt(square(outwardOf(face)));
    const double gathered = mirrorHeat(c, face, length, oneSided(c, d, face, d.gBarPlus, d.gradGBarPlus), g);
    if (c.enthalpyForm()) {
        if (face.thermalKind == constantTemperature)
            face.H = c.relation.enthalpyOf(face.T);
        else
            face.H = face.thermalKind == constantFlux ? gathered : cell.H;
        face.T = c.relation.temperatureOf(face.H);
    } else if (face.thermalKind == constantFlux) {
        face.T = gathered;
    } else if (face.thermalKind != constantTemperature) {
        face.T = cell.T;
    }
    if (c.buoyancyOn) {
        face.Fx = 0.0;
        face.Fy = c.buoyancyCoeff * face.T;
    }
    // Deliberate: on a wall of ice the zero replaces the assigned wall velocity for the rest of the run.
    if (heldStill(c, face.H)) {
        face.u = 0.0;
        face.v = 0.0;
    }
}

void boundaryFlow(const StepConstants& c, const StepData2D& d, FaceRecord& face, double* f) {
    const CellRecord& cell = d.cells[sidesOf(d, face).c0];
    const OneSided<2> reconstructed = oneSided(c, d, face, d.fBarPlus, d.gradFBarPlus);
    face.rho = cell.rho;
    const bool open = face.flowKind == outflow;
    if (open) {
        face.u = cell.u;
        face.v = cell.v;
    }
    const Vector<2> u = velocityOf(face);
    for (int k = 0; k < c.velocityCount; ++k) {
        if (!(alongOne(c, k, outwardOf(face)) >= 0.0))
            continue;
        const int mirrored = c.opposite[k];
        f[k] = reconstructed(c, k);
        f[mirrored] = open ? reconstructed.bar[mirrored] : bouncedBack(c, k, f[k], face.rho, u);
    }
}

FLUVANE_FLATTEN void boundary(const StepConstants& c, const StepData2D& d, std::int32_t first,
                              std::int32_t last) {
    const std::ptrdiff_t q = c.velocityCount;
    for (std::ptrdiff_t i = first; i < last; ++i) {
        FaceRecord& face = d.faces[i];
        if (c.heatOn())
            boundaryHeat(c, d, face, d.gFace + i * q);
        if (c.flowOn)
            boundaryFlow(c, d, face, d.fFace + i * q);
    }
}

// ---- recovery -------------------------------------------------------------------------------------------

template <int Q>
FLUVANE_FLATTEN void recover(const StepConstants& c, const StepData2D& d, std::int32_t first,
                             std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const FaceRecord& face = d.faces[i];
        if (c.heatOn()) {
            prefetchRecord<Q, StepData2D>(c, d.faces, d.gFace, i, last);
            recoverHeat<Q>(c, face.T, velocityOf(face), d.gFace + i * q);
        }
        if (c.flowOn) {
            prefetchRecord<Q, StepData2D>(c, d.faces, d.fFace, i, last);
            recoverFlow<Q>(c, face.rho, velocityOf(face), forceOf(face), d.fFace + i * q);
        }
    }
}

// ---- update ---------------------------------------------------------------------------------------------

FLUVANE_FORCE_INLINE void setThermalCell(const StepConstants& c, CellRecord& cell, double total) {
    cell.TPrev = cell.T;
    if (c.enthalpyForm()) {
        cell.H = total;
        cell.T = c.relation.temperatureOf(total);
    } else {
        cell.T = total;
    }
    cell.Fx = 0.0;
    cell.Fy = buoyancy(c, cell.T);
    if (heldStill(c, cell.H)) {
        cell.u = 0.0;
        cell.v = 0.0;
    }
}

template <int Q>
FLUVANE_FLATTEN void update(const StepConstants& c, const StepData2D& d, std::int32_t first,
                            std::int32_t last) {
    overGroups(first, last, [&](std::ptrdiff_t i, auto n) {
        updateCells<Q, n>(c, d, i, [&c](CellRecord& cell, double total) { setThermalCell(c, cell, total); });
    });
}

template <int Q>
constexpr LoopKernels2D kernelsFor() {
    return {&collide<Q>, &gradients<Q, StepData2D>, &reconstruct<Q>, &boundary, &recover<Q>, &update<Q>};
}

} // namespace

const LoopKernels2D& loopKernels2D(int velocityCount) {
    static constexpr LoopKernels2D nine = kernelsFor<9>();
    static constexpr LoopKernels2D any = kernelsFor<0>();
    return velocityCount == 9 ? nine : any;
}

} // namespace fluvane::FLUVANE_ISA
