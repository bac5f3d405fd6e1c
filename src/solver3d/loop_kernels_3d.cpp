// The kernels of the five loops of a 3D step. Compiled once per instruction set, each in its own namespace.
#include "solver3d/loop_kernels_3d.h"

#include "solver2d/kinetic_kernels.h"

#include <cmath>

namespace fluvane::FLUVANE_ISA {

namespace {

/// Deliberate: the enthalpy form collides with the temperature equilibrium too.
template <int Q>
FLUVANE_FLATTEN void collide(const StepConstants& c, const StepData3D& d, std::int32_t first,
                             std::int32_t last) {
    overBlocks(first, last, [&](std::int32_t begin, std::int32_t end) {
        if (c.flowOn)
            collideFlow<Q>(c, d, begin, end, last);
        if (c.heatOn())
            collideTemperature<Q>(c, d, begin, end, last);
    });
}

// ---- interior faces -------------------------------------------------------------------------------------

/// Faces i .. i + N - 1, heat before flow. Deliberate: the temperature is the sum of the bar values in both
/// thermal modes, and the recovery of heat sees the face velocity of the previous step, since the flow
/// follows.
template <int Q, int N>
FLUVANE_FORCE_INLINE void reconstructFaces(const StepConstants& c, const StepData3D& d, std::ptrdiff_t i,
                                           std::ptrdiff_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    FaceRecord3D* const faces = d.faces + i;
    prefetchFaces<Q, N>(c, d, i, last);
    double temperature[N] = {};
    if (c.heatOn()) {
        prefetchBeforeHeat<Q, N>(c, d, i, last);
        double* const g = d.gFace + i * q;
        for (int n = 0; n < N; ++n)
            reconstructRow<Q>(c, d, faces[n], d.gBarPlus, d.gradGBarPlus, g + n * q);
        sums<Q>(c, g, temperature);
        for (int n = 0; n < N; ++n) {
            faces[n].Fx = 0.0;
            faces[n].Fy = 0.0;
            faces[n].Fz = buoyancy(c, temperature[n]);
            recoverHeat<Q>(c, temperature[n], velocityOf(faces[n]), g + n * q);
        }
    }
    for (int n = 0; n < N; ++n)
        faces[n].T = temperature[n];
    if (c.flowOn) {
        prefetchBeforeFlow<Q, N>(c, d, i, last);
        double* const f = d.fFace + i * q;
        FlowMoments<3> moments[N];
        for (int n = 0; n < N; ++n)
            reconstructRow<Q>(c, d, faces[n], d.fBarPlus, d.gradFBarPlus, f + n * q);
        flowMoments<3, Q>(c, f, moments);
        for (int n = 0; n < N; ++n) {
            setFlow(faces[n], moments[n], c.quarterStep);
            recoverFlow<Q>(c, faces[n].rho, velocityOf(faces[n]), forceOf(faces[n]), f + n * q);
        }
    }
}

template <int Q>
FLUVANE_FLATTEN void reconstruct(const StepConstants& c, const StepData3D& d, std::int32_t first,
                                 std::int32_t last) {
    overGroups(first, last, [&](std::ptrdiff_t i, auto n) { reconstructFaces<Q, n>(c, d, i, last); });
}

// ---- boundary faces -------------------------------------------------------------------------------------

template <int Q>
void boundaryHeat(const StepConstants& c, const StepData3D& d, FaceRecord3D& face, double* g) {
    if (face.thermalKind != constantTemperature && face.thermalKind != constantFlux)
        face.T = d.cells[sidesOf(d, face).c0].T;
    const double length = std::sqrt(square(outwardOf(face)));
    const double gathered = mirrorHeat(c, face, length, oneSided(c, d, face, d.gBarPlus, d.gradGBarPlus), g);
    if (face.thermalKind == constantFlux)
        face.T = gathered;
    if (c.buoyancyOn) {
        face.Fx = 0.0;
        face.Fy = 0.0;
        face.Fz = c.buoyancyCoeff * face.T;
    }
    recoverHeat<Q>(c, face.T, velocityOf(face), g);
}

/// Deliberate: the density of a boundary face stays as assigned, and an outflow takes over u and v, but not
/// w.
template <int Q>
void boundaryFlow(const StepConstants& c, const StepData3D& d, FaceRecord3D& face, double* f) {
    const CellRecord3D& cell = d.cells[sidesOf(d, face).c0];
    const OneSided<3> reconstructed = oneSided(c, d, face, d.fBarPlus, d.gradFBarPlus);
    const bool open = face.flowKind == outflow;
    if (open) {
        face.u = cell.u;
        face.v = cell.v;
    }
    const Vector<3> u = velocityOf(face);
    for (int k = 0; k < c.velocityCount; ++k) {
        if (!(alongOne(c, k, outwardOf(face)) >= 0.0))
            continue;
        f[k] = reconstructed(c, k);
        if (k == 0)
            continue; // the rest velocity is its own opposite and meets no wall
        const int mirrored = c.opposite[k];
        f[mirrored] = open ? reconstructed.bar[mirrored] : bouncedBack(c, k, f[k], face.rho, u);
    }
    recoverFlow<Q>(c, face.rho, u, forceOf(face), f);
}

template <int Q>
FLUVANE_FLATTEN void boundary(const StepConstants& c, const StepData3D& d, std::int32_t first,
                              std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        FaceRecord3D& face = d.faces[i];
        if (c.heatOn())
            boundaryHeat<Q>(c, d, face, d.gFace + i * q);
        if (c.flowOn)
            boundaryFlow<Q>(c, d, face, d.fFace + i * q);
    }
}

// ---- update ---------------------------------------------------------------------------------------------

FLUVANE_FORCE_INLINE void setThermalCell(const StepConstants& c, CellRecord3D& cell, double total) {
    cell.TPrev = cell.T;
    if (c.enthalpyForm()) {
        cell.H = total;
        cell.T = c.relation.temperatureOf(total);
    } else {
        cell.T = total;
    }
    cell.Fx = 0.0;
    cell.Fy = 0.0;
    cell.Fz = buoyancy(c, cell.T);
}

template <int Q>
FLUVANE_FLATTEN void update(const StepConstants& c, const StepData3D& d, std::int32_t first,
                            std::int32_t last) {
    overGroups(first, last, [&](std::ptrdiff_t i, auto n) {
        updateCells<Q, n>(c, d, i,
                          [&c](CellRecord3D& cell, double total) { setThermalCell(c, cell, total); });
    });
}

template <int Q>
constexpr LoopKernels3D kernelsFor() {
    return {&collide<Q>, &gradients<Q, StepData3D>, &reconstruct<Q>, &boundary<Q>, &update<Q>};
}

} // namespace

const LoopKernels3D& loopKernels3D(int velocityCount) {
    static constexpr LoopKernels3D fifteen = kernelsFor<15>();
    static constexpr LoopKernels3D nineteen = kernelsFor<19>();
    static constexpr LoopKernels3D twentySeven = kernelsFor<27>();
    static constexpr LoopKernels3D any = kernelsFor<0>();
    switch (velocityCount) {
    case 15:
        return fifteen;
    case 19:
        return nineteen;
    case 27:
        return twentySeven;
    default:
        return any;
    }
}

} // namespace fluvane::FLUVANE_ISA
