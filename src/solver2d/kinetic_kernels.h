// What the loops of a 2D and of a 3D step have in common: the kinetic algebra with D components and the
// kernels made of it. Compiled once per instruction set, each in its own namespace.
#pragma once

#include "mesh/mesh.h"
#include "solver2d/prefetch.h"
#include "solver2d/record_places.h"
#include "solver2d/row.h"
#include "solver2d/step_constants.h"
#include "solver2d/step_data.h"

namespace fluvane::FLUVANE_ISA {

// ---- vectors of records -----------------------------------------------------------------------------------

/// A vector of space.
template <int D>
struct Vector {
    double component[D];

    FLUVANE_FORCE_INLINE double operator[](int axis) const { return component[axis]; }
    FLUVANE_FORCE_INLINE friend Vector operator-(const Vector& a, const Vector& b) {
        Vector difference;
        for (int axis = 0; axis < D; ++axis)
            difference.component[axis] = a.component[axis] - b.component[axis];
        return difference;
    }
};

FLUVANE_FORCE_INLINE Vector<2> vectorOf(const Vec2& a) {
    return {{a.x, a.y}};
}
FLUVANE_FORCE_INLINE Vector<3> vectorOf(const Vec3& a) {
    return {{a.x, a.y, a.z}};
}
FLUVANE_FORCE_INLINE Vector<2> velocityOf(const CellRecord& r) {
    return {{r.u, r.v}};
}
FLUVANE_FORCE_INLINE Vector<2> velocityOf(const FaceRecord& r) {
    return {{r.u, r.v}};
}
FLUVANE_FORCE_INLINE Vector<3> velocityOf(const CellRecord3D& r) {
    return {{r.u, r.v, r.w}};
}
FLUVANE_FORCE_INLINE Vector<3> velocityOf(const FaceRecord3D& r) {
    return {{r.u, r.v, r.w}};
}
FLUVANE_FORCE_INLINE Vector<2> forceOf(const CellRecord& r) {
    return {{r.Fx, r.Fy}};
}
FLUVANE_FORCE_INLINE Vector<2> forceOf(const FaceRecord& r) {
    return {{r.Fx, r.Fy}};
}
FLUVANE_FORCE_INLINE Vector<3> forceOf(const CellRecord3D& r) {
    return {{r.Fx, r.Fy, r.Fz}};
}
FLUVANE_FORCE_INLINE Vector<3> forceOf(const FaceRecord3D& r) {
    return {{r.Fx, r.Fy, r.Fz}};
}
FLUVANE_FORCE_INLINE Vector<2> centreOf(const CellRecord& r) {
    return {{r.xc, r.yc}};
}
FLUVANE_FORCE_INLINE Vector<2> centreOf(const FaceRecord& r) {
    return {{r.xf, r.yf}};
}
FLUVANE_FORCE_INLINE Vector<3> centreOf(const CellRecord3D& r) {
    return {{r.xc, r.yc, r.zc}};
}
FLUVANE_FORCE_INLINE Vector<3> centreOf(const FaceRecord3D& r) {
    return {{r.xf, r.yf, r.zf}};
}

/// Points out of c0: the area vector in 2D, the unit normal in 3D.
FLUVANE_FORCE_INLINE Vector<2> outwardOf(const FaceRecord& r) {
    return {{r.S0x, r.S0y}};
}
FLUVANE_FORCE_INLINE Vector<3> outwardOf(const FaceRecord3D& r) {
    return {{r.n0x, r.n0y, r.n0z}};
}

/// The squared length.
FLUVANE_FORCE_INLINE double square(const Vector<2>& a) {
    return a[0] * a[0] + a[1] * a[1];
}
FLUVANE_FORCE_INLINE double square(const Vector<3>& a) {
    return a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
}

/// A force that is exactly zero adds exactly nothing: skipping it changes no bit.
FLUVANE_FORCE_INLINE bool forced(const Vector<2>& a) {
    return a[0] != 0.0 || a[1] != 0.0;
}
FLUVANE_FORCE_INLINE bool forced(const Vector<3>& a) {
    return a[0] != 0.0 || a[1] != 0.0 || a[2] != 0.0;
}

// ---- velocities -------------------------------------------------------------------------------------------

/// xi.a of the row of velocities from k on, components added in the order x, y, z: many velocities run
/// exactly along faces, and the upwind side is the sign of just this sum.
template <class R, int D>
FLUVANE_FORCE_INLINE R along(const StepConstants& c, int k, const Vector<D>& a) {
    R e = R::load(c.xi[0] + k) * a[0] + R::load(c.xi[1] + k) * a[1];
    if constexpr (D == 3)
        e = e + R::load(c.xi[2] + k) * a[2];
    return e;
}

/// The same for one velocity.
template <int D>
FLUVANE_FORCE_INLINE double alongOne(const StepConstants& c, int k, const Vector<D>& a) {
    double e = c.xi[0][k] * a[0] + c.xi[1][k] * a[1];
    if constexpr (D == 3)
        e = e + c.xi[2][k] * a[2];
    return e;
}

// ---- moments ----------------------------------------------------------------------------------------------

template <int D>
struct FlowMoments {
    double rho;
    double momentum[D];
};

/// Density and momentum of N distributions that lie one after the other, each summed over the velocities in
/// their order. One sum waits for its own last addition only, so several go on side by side.
template <int D, int Q, int N>
FLUVANE_FORCE_INLINE void flowMoments(const StepConstants& c, const double* f, FlowMoments<D> (&m)[N]) {
    const int count = Q > 0 ? Q : c.velocityCount;
#if FLUVANE_VECTORS
    using Moments = Row<4>;
    Moments sums[N];
    for (int n = 0; n < N; ++n)
        sums[n] = Moments::zero();
    for (int k = 0; k < count; ++k) {
        const Moments factors = Moments::load(c.momentFactors[k]);
        for (int n = 0; n < N; ++n)
            sums[n] = sums[n] + factors * f[n * count + k];
    }
    for (int n = 0; n < N; ++n) {
        alignas(32) double sum[4];
        sums[n].store(sum);
        m[n].rho = sum[0];
        for (int axis = 0; axis < D; ++axis)
            m[n].momentum[axis] = sum[axis + 1];
    }
#else
    for (int n = 0; n < N; ++n) {
        m[n] = {};
        for (int k = 0; k < count; ++k) {
            m[n].rho += f[n * count + k];
            for (int axis = 0; axis < D; ++axis)
                m[n].momentum[axis] += c.xi[axis][k] * f[n * count + k];
        }
    }
#endif
}

/// Velocity from the moments and the part of a step's force that the bar distribution lacks.
FLUVANE_FORCE_INLINE void setFlow(CellRecord& r, const FlowMoments<2>& m, double forceTime) {
    r.rho = m.rho;
    r.u = m.momentum[0] / m.rho + forceTime * r.Fx;
    r.v = m.momentum[1] / m.rho + forceTime * r.Fy;
}
FLUVANE_FORCE_INLINE void setFlow(FaceRecord& r, const FlowMoments<2>& m, double forceTime) {
    r.rho = m.rho;
    r.u = m.momentum[0] / m.rho + forceTime * r.Fx;
    r.v = m.momentum[1] / m.rho + forceTime * r.Fy;
}
FLUVANE_FORCE_INLINE void setFlow(CellRecord3D& r, const FlowMoments<3>& m, double forceTime) {
    r.rho = m.rho;
    r.u = m.momentum[0] / m.rho + forceTime * r.Fx;
    r.v = m.momentum[1] / m.rho + forceTime * r.Fy;
    r.w = m.momentum[2] / m.rho + forceTime * r.Fz;
}
FLUVANE_FORCE_INLINE void setFlow(FaceRecord3D& r, const FlowMoments<3>& m, double forceTime) {
    r.rho = m.rho;
    r.u = m.momentum[0] / m.rho + forceTime * r.Fx;
    r.v = m.momentum[1] / m.rho + forceTime * r.Fy;
    r.w = m.momentum[2] / m.rho + forceTime * r.Fz;
}

/// The sums of N distributions that lie one after the other.
template <int Q, int N>
FLUVANE_FORCE_INLINE void sums(const StepConstants& c, const double* g, double (&s)[N]) {
    const int count = Q > 0 ? Q : c.velocityCount;
    for (int n = 0; n < N; ++n)
        s[n] = 0.0;
    for (int k = 0; k < count; ++k)
        for (int n = 0; n < N; ++n)
            s[n] += g[n * count + k];
}

FLUVANE_FORCE_INLINE double buoyancy(const StepConstants& c, double T) {
    return c.buoyancyOn ? c.buoyancyCoeff * T : 0.0;
}

// ---- equilibria of a row ----------------------------------------------------------------------------------

/// w phi P: the flow equilibrium with phi = rho, the temperature form with phi = T.
template <class R, int D>
FLUVANE_FORCE_INLINE R equilibriumRow(const StepConstants& c, int k, double phi, const Vector<D>& u) {
    return R::load(c.weights + k) * phi * equilibriumPolynomial(c.polynomial, along<R>(c, k, u), square(u));
}

/// (xi - u).a / RT, the factor of the flow equilibrium in the forcing term.
template <class R, int D>
FLUVANE_FORCE_INLINE R forcingFactorRow(const StepConstants& c, int k, const Vector<D>& u,
                                        const Vector<D>& a) {
    R e = (R::load(c.xi[0] + k) - u[0]) * a[0] + (R::load(c.xi[1] + k) - u[1]) * a[1];
    if constexpr (D == 3)
        e = e + (R::load(c.xi[2] + k) - u[2]) * a[2];
    return e * c.polynomial.inverseRT;
}

template <class R, int D>
FLUVANE_FORCE_INLINE R heatSourceRow(const StepConstants& c, int k, const Vector<D>& u) {
    return R::load(c.weights + k) * c.heatSource * (1.0 + along<R>(c, k, u) * c.polynomial.inverseRT);
}

// ---- collision --------------------------------------------------------------------------------------------

template <class R>
FLUVANE_FORCE_INLINE void storeCollided(const CollisionFactors& factors, const R& tilde, const R& eq,
                                        double* plus, double* barPlus) {
    const R collided = factors.A * tilde + factors.B * eq;
    collided.store(plus);
    ((3.0 * collided + tilde) * 0.25).store(barPlus);
}

template <class R>
FLUVANE_FORCE_INLINE void storeCollided(const CollisionFactors& factors, const R& tilde, const R& eq,
                                        const R& source, double* plus, double* barPlus) {
    const R collided = factors.A * tilde + factors.B * eq + factors.C * source;
    collided.store(plus);
    ((3.0 * collided + tilde) * 0.25).store(barPlus);
}

/// Cells first .. last - 1 of a share that goes on to `end`.
template <int Q, class Data>
void collideFlow(const StepConstants& c, const Data& d, std::int32_t first, std::int32_t last,
                 std::int32_t end) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        prefetchCollision<Q>(c, d, d.fTilde, d.fTildePlus, d.fBarPlus, i, end);
        const auto& cell = d.cells[i];
        const double rho = cell.rho;
        const auto u = velocityOf(cell);
        const auto force = forceOf(cell);
        const double* const tilde = d.fTilde + i * q;
        double* const plus = d.fTildePlus + i * q;
        double* const bar = d.fBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R eq = equilibriumRow<R>(c, k, rho, u);
            if (forced(force))
                storeCollided(c.collideF, R::load(tilde + k), eq, eq * forcingFactorRow<R>(c, k, u, force),
                              plus + k, bar + k);
            else
                storeCollided(c.collideF, R::load(tilde + k), eq, plus + k, bar + k);
        });
    }
}

template <int Q, class Data>
void collideTemperature(const StepConstants& c, const Data& d, std::int32_t first, std::int32_t last,
                        std::int32_t end) {
    const std::ptrdiff_t q = stride<Q>(c);
    const bool heated = c.heatSource != 0.0;
    for (std::ptrdiff_t i = first; i < last; ++i) {
        prefetchCollision<Q>(c, d, d.gTilde, d.gTildePlus, d.gBarPlus, i, end);
        const auto& cell = d.cells[i];
        const double T = cell.T;
        const auto u = velocityOf(cell);
        const double* const tilde = d.gTilde + i * q;
        double* const plus = d.gTildePlus + i * q;
        double* const bar = d.gBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R eq = equilibriumRow<R>(c, k, T, u);
            if (heated)
                storeCollided(c.collideG, R::load(tilde + k), eq, heatSourceRow<R>(c, k, u), plus + k,
                              bar + k);
            else
                storeCollided(c.collideG, R::load(tilde + k), eq, plus + k, bar + k);
        });
    }
}

// ---- gradients --------------------------------------------------------------------------------------------

/// Least-squares gradients of one bar distribution, neighbours added in the order they are stored.
template <int Q, class Data>
void gradientsOf(const StepConstants& c, const Data& d, const double* barPlus, double* gradient,
                 std::int32_t first, std::int32_t last) {
    constexpr int D = Data::dimensions;
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const std::int32_t begin = d.neighbourStart[i];
        const std::int32_t end = d.neighbourStart[i + 1];
        const double* const own = barPlus + i * q;
        double* const out = gradient + D * i * q;
        prefetchGradients<Q>(c, d, barPlus, gradient, i, last);
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R centre = R::load(own + k);
            R sumX = R::zero();
            R sumY = R::zero();
            [[maybe_unused]] R sumZ = R::zero();
            for (std::int32_t j = begin; j < end; ++j) {
                const R difference = centre - R::load(barPlus + d.neighbours[j] * q + k);
                sumX = sumX + difference * d.lsq[j].x;
                sumY = sumY + difference * d.lsq[j].y;
                if constexpr (D == 3)
                    sumZ = sumZ + difference * d.lsq[j].z;
            }
            sumX.store(out + k);
            sumY.store(out + q + k);
            if constexpr (D == 3)
                sumZ.store(out + 2 * q + k);
        });
    }
}

template <int Q, class Data>
FLUVANE_FLATTEN void gradients(const StepConstants& c, const Data& d, std::int32_t first, std::int32_t last) {
    if (c.flowOn)
        gradientsOf<Q>(c, d, d.fBarPlus, d.gradFBarPlus, first, last);
    if (c.heatOn())
        gradientsOf<Q>(c, d, d.gBarPlus, d.gradGBarPlus, first, last);
}

// ---- faces ------------------------------------------------------------------------------------------------

/// The bar value at the foot of the characteristic that ends at the face after half a step, from whichever
/// side is upwind; a tangential velocity takes c0.
template <int Q, class Data>
FLUVANE_FORCE_INLINE void reconstructRow(const StepConstants& c, const Data& d,
                                         const typename Data::FaceType& face, const double* barPlus,
                                         const double* gradient, double* out) {
    constexpr int D = Data::dimensions;
    const std::ptrdiff_t q = stride<Q>(c);
    const auto [c0, c1] = sidesOf(d, face);
    const Vector<D> d0 = centreOf(face) - centreOf(d.cells[c0]);
    const Vector<D> d1 = centreOf(face) - centreOf(d.cells[c1]);
    const Vector<D> S = outwardOf(face);
    const double* const bar0 = barPlus + c0 * q;
    const double* const bar1 = barPlus + c1 * q;
    const double* const gradient0 = gradient + D * q * c0;
    const double* const gradient1 = gradient + D * q * c1;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        const R side = along<R>(c, k, S);
        R value = R::select(side, R::load(bar0 + k), R::load(bar1 + k));
        for (int axis = 0; axis < D; ++axis) {
            const R distance = R::select(side, d0[axis], d1[axis]) - R::load(c.reach[axis] + k);
            const R slope =
                R::select(side, R::load(gradient0 + axis * q + k), R::load(gradient1 + axis * q + k));
            value = value + distance * slope;
        }
        value.store(out + k);
    });
}

/// The distribution at the half step from the bar distribution, in place. Deliberate: the temperature form of
/// the equilibrium in both thermal modes.
template <int Q, int D>
FLUVANE_FORCE_INLINE void recoverHeat(const StepConstants& c, double T, const Vector<D>& u, double* g) {
    const RecoveryFactors& r = c.recoverG;
    const bool heated = c.heatSource != 0.0;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        R out = r.a * R::load(g + k) + r.b * equilibriumRow<R>(c, k, T, u);
        if (heated)
            out = out + r.c * heatSourceRow<R>(c, k, u);
        out.store(g + k);
    });
}

template <int Q, int D>
FLUVANE_FORCE_INLINE void recoverFlow(const StepConstants& c, double rho, const Vector<D>& u,
                                      const Vector<D>& force, double* f) {
    const RecoveryFactors& r = c.recoverF;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        const R eq = equilibriumRow<R>(c, k, rho, u);
        R out = r.a * R::load(f + k) + r.b * eq;
        if (forced(force))
            out = out + r.c * (eq * forcingFactorRow<R>(c, k, u, force));
        out.store(f + k);
    });
}

// ---- boundary faces ---------------------------------------------------------------------------------------

/// Flow and thermal kinds as the boundary records number them.
enum : std::int32_t { outflow = 2, constantTemperature = 1, constantFlux = 2 };

/// Reconstruction from the one cell of a boundary face, for one velocity at a time.
template <int D>
struct OneSided {
    const double* bar;
    const double* gradient;
    std::ptrdiff_t q;
    Vector<D> distance;

    FLUVANE_FORCE_INLINE double operator()(const StepConstants& c, int k) const {
        double value = bar[k];
        for (int axis = 0; axis < D; ++axis)
            value = value + (distance[axis] - c.reach[axis][k]) * gradient[axis * q + k];
        return value;
    }
};

template <class Data>
FLUVANE_FORCE_INLINE OneSided<Data::dimensions> oneSided(const StepConstants& c, const Data& d,
                                                         const typename Data::FaceType& face,
                                                         const double* barPlus, const double* gradient) {
    const std::ptrdiff_t q = c.velocityCount;
    const std::ptrdiff_t cell = sidesOf(d, face).c0;
    return {barPlus + cell * q, gradient + Data::dimensions * q * cell, q,
            centreOf(face) - centreOf(d.cells[cell])};
}

/// Fills the face's g from the thermal condition; returns the sum that a constant-flux wall gathers per
/// visit. Deliberate: a tangential pair is visited twice, the later visit overwrites the earlier's mirror and
/// both count in the sum.
template <int D, class Face>
FLUVANE_FORCE_INLINE double mirrorHeat(const StepConstants& c, const Face& face, double normalLength,
                                       const OneSided<D>& reconstructed, double* g) {
    const Vector<D> S = outwardOf(face);
    double gathered = 0.0;
    for (int k = 0; k < c.velocityCount; ++k) {
        if (!(alongOne(c, k, S) >= 0.0))
            continue;
        const int mirrored = c.opposite[k];
        g[k] = reconstructed(c, k);
        if (face.thermalKind == constantFlux) {
            gathered += g[k];
            if (k > 0) {
                g[mirrored] = g[k] - (2.0 * c.tauG + c.halfStep) * face.q * c.weights[k] *
                                         alongOne(c, mirrored, S) / (c.alpha * normalLength);
                gathered += g[mirrored];
            }
        } else if (k > 0 && face.thermalKind == constantTemperature) {
            g[mirrored] = 2.0 * c.weights[k] * face.T - g[k];
        } else if (k > 0) {
            g[mirrored] = g[k];
        }
    }
    return gathered;
}

/// The incoming value at a wall that moves with the face's velocity.
template <int D>
FLUVANE_FORCE_INLINE double bouncedBack(const StepConstants& c, int k, double f, double rho,
                                        const Vector<D>& wall) {
    return f - 2.0 * c.weights[k] * rho * alongOne(c, k, wall) * c.polynomial.inverseRT;
}

// ---- update -----------------------------------------------------------------------------------------------

/// xi.S of a row of velocities times the distribution on face j of the cell.
template <class R>
FLUVANE_FORCE_INLINE R fluxAcross(const StepConstants& c, int k, const CellRecord& cell, std::size_t j,
                                  const R& distribution) {
    return along<R>(c, k, vectorOf(cell.S[j])) * distribution;
}
template <class R>
FLUVANE_FORCE_INLINE R fluxAcross(const StepConstants& c, int k, const CellRecord3D& cell, std::size_t j,
                                  const R& distribution) {
    return along<R>(c, k, vectorOf(cell.normals[j])) * distribution * cell.areas[j];
}

FLUVANE_FORCE_INLINE double sizeOf(const CellRecord& cell) {
    return cell.area;
}
FLUVANE_FORCE_INLINE double sizeOf(const CellRecord3D& cell) {
    return cell.volume;
}

/// tilde = plus - dt/size times the sum of the outward fluxes, faces in the order they were attached.
template <int Q, class Data>
FLUVANE_FORCE_INLINE void addFluxes(const StepConstants& c, const Data& d,
                                    const typename Data::CellType& cell, const double* facePool,
                                    const double* plus, double* tilde) {
    const std::ptrdiff_t q = stride<Q>(c);
    const double rate = c.dt / sizeOf(cell);
    const std::int32_t* const faces = facesOf(d, cell);
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        R flux = R::zero();
        for (std::size_t j = 0; j < static_cast<std::size_t>(cell.faceCount); ++j)
            flux = flux + fluxAcross<R>(c, k, cell, j, R::load(facePool + faces[j] * q + k));
        (R::load(plus + k) - rate * flux).store(tilde + k);
    });
}

/// What a cell's velocity was before the update.
FLUVANE_FORCE_INLINE void keepVelocity(CellRecord& cell) {
    cell.uPrev = cell.u;
    cell.vPrev = cell.v;
}
FLUVANE_FORCE_INLINE void keepVelocity(CellRecord3D& cell) {
    cell.uPrev = cell.u;
    cell.vPrev = cell.v;
    cell.wPrev = cell.w;
}

/// Cells i .. i + N - 1, flow before heat. `setThermal` turns the sum of a cell's g into its thermal state.
template <int Q, int N, class Data, class SetThermal>
FLUVANE_FORCE_INLINE void updateCells(const StepConstants& c, const Data& d, std::ptrdiff_t i,
                                      const SetThermal& setThermal) {
    constexpr int D = Data::dimensions;
    const std::ptrdiff_t q = stride<Q>(c);
    auto* const cells = d.cells + i;
    for (int n = 0; n < N; ++n)
        prefetchUpdate<Q>(c, d, i + n);
    if (c.flowOn) {
        double* const tilde = d.fTilde + i * q;
        FlowMoments<D> moments[N];
        for (int n = 0; n < N; ++n)
            addFluxes<Q>(c, d, cells[n], d.fFace, d.fTildePlus + (i + n) * q, tilde + n * q);
        flowMoments<D, Q>(c, tilde, moments);
        for (int n = 0; n < N; ++n) {
            keepVelocity(cells[n]);
            setFlow(cells[n], moments[n], c.halfStep);
        }
    }
    if (c.heatOn()) {
        double* const tilde = d.gTilde + i * q;
        double total[N];
        for (int n = 0; n < N; ++n)
            addFluxes<Q>(c, d, cells[n], d.gFace, d.gTildePlus + (i + n) * q, tilde + n * q);
        sums<Q>(c, tilde, total);
        for (int n = 0; n < N; ++n)
            setThermal(cells[n], total[n]);
    }
}

} // namespace fluvane::FLUVANE_ISA
