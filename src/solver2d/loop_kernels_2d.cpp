// The kernels of the six loops of a 2D step. Compiled once per instruction set, each in its own namespace.
#include "solver2d/loop_kernels_2d.h"
#include "mesh/mesh.h"
#include "solver2d/row.h"

#include <cmath>

namespace fluvane::FLUVANE_ISA {

namespace {

/// Q as a pool stride: known at compile time, or the velocity set's.
template <int Q>
FLUVANE_FORCE_INLINE std::ptrdiff_t stride(const StepConstants& c) {
    return Q > 0 ? Q : c.velocityCount;
}

// ---- moments ------------------------------------------------------------------------------------------

struct FlowMoments {
    double rho, mx, my;
};

/// Density and momentum of a distribution, each summed over the velocities in their order.
template <int Q>
FLUVANE_FORCE_INLINE FlowMoments flowMoments(const StepConstants& c, const double* f) {
    const int count = Q > 0 ? Q : c.velocityCount;
#if FLUVANE_VECTORS
    using Moments = Row<4>;
    Moments sum = Moments::zero();
    for (int k = 0; k < count; ++k)
        sum = sum + Moments::load(c.momentFactors[k]) * f[k];
    alignas(32) double m[4];
    sum.store(m);
    return {m[0], m[1], m[2]};
#else
    FlowMoments m{0.0, 0.0, 0.0};
    for (int k = 0; k < count; ++k) {
        m.rho += f[k];
        m.mx += c.xi[0][k] * f[k];
        m.my += c.xi[1][k] * f[k];
    }
    return m;
#endif
}

template <int Q>
FLUVANE_FORCE_INLINE double sum(const StepConstants& c, const double* g) {
    const int count = Q > 0 ? Q : c.velocityCount;
    double s = 0.0;
    for (int k = 0; k < count; ++k)
        s += g[k];
    return s;
}

// ---- equilibria of a row --------------------------------------------------------------------------------

template <class R>
FLUVANE_FORCE_INLINE R polynomialRow(const StepConstants& c, int k, double u, double v) {
    const R e = R::load(c.xi[0] + k) * u + R::load(c.xi[1] + k) * v;
    return equilibriumPolynomial(c.polynomial, e, u * u + v * v);
}

/// w phi P: the flow equilibrium with phi = rho, the temperature form with phi = T.
template <class R>
FLUVANE_FORCE_INLINE R equilibriumRow(const StepConstants& c, int k, double phi, double u, double v) {
    return R::load(c.weights + k) * phi * polynomialRow<R>(c, k, u, v);
}

/// (xi - u).a / RT, the factor of the flow equilibrium in the forcing term.
template <class R>
FLUVANE_FORCE_INLINE R forcingFactorRow(const StepConstants& c, int k, double u, double v, double Fx,
                                        double Fy) {
    return ((R::load(c.xi[0] + k) - u) * Fx + (R::load(c.xi[1] + k) - v) * Fy) * c.polynomial.inverseRT;
}

template <class R>
FLUVANE_FORCE_INLINE R heatSourceRow(const StepConstants& c, int k, double u, double v) {
    const R e = R::load(c.xi[0] + k) * u + R::load(c.xi[1] + k) * v;
    return R::load(c.weights + k) * c.heatSource * (1.0 + e * c.polynomial.inverseRT);
}

/// The enthalpy equilibrium of the moving velocities; the rest velocity is set apart by `restEnthalpy`.
template <class R>
FLUVANE_FORCE_INLINE R enthalpyRow(const StepConstants& c, int k, double H, double T, double u, double v) {
    if (c.heat == HeatForm::enthalpyLftf)
        return equilibriumRow<R>(c, k, H, u, v) + R::load(c.weights + k) * (T - H);
    return equilibriumRow<R>(c, k, T, u, v);
}

FLUVANE_FORCE_INLINE double restEnthalpy(const StepConstants& c, double H, double T, double u, double v) {
    const double w = c.weights[0];
    const double restPart = (u * u + v * v) * c.polynomial.halfInverseRT;
    if (c.heat == HeatForm::enthalpyLftf)
        return w * T + (H - T) - restPart * w * H;
    return w * T * (1.0 - restPart) + (H - T);
}

/// A force that is exactly zero adds exactly nothing: skipping it changes no bit.
FLUVANE_FORCE_INLINE bool forced(double Fx, double Fy) {
    return Fx != 0.0 || Fy != 0.0;
}

FLUVANE_FORCE_INLINE double buoyancy(const StepConstants& c, double T) {
    return c.buoyancyOn ? c.buoyancyCoeff * T : 0.0;
}

/// Deliberate: solid below half a liquid fraction, unless the LFTF variant is on.
FLUVANE_FORCE_INLINE bool heldStill(const StepConstants& c, double H) {
    return c.heat == HeatForm::enthalpy && c.relation.liquidFraction(H) < 0.5;
}

// ---- collision ------------------------------------------------------------------------------------------

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

template <int Q>
void collideFlow(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const CellRecord& cell = d.cells[i];
        const double rho = cell.rho, u = cell.u, v = cell.v, Fx = cell.Fx, Fy = cell.Fy;
        const double* const tilde = d.fTilde + i * q;
        double* const plus = d.fTildePlus + i * q;
        double* const bar = d.fBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R eq = equilibriumRow<R>(c, k, rho, u, v);
            if (forced(Fx, Fy))
                storeCollided(c.collideF, R::load(tilde + k), eq,
                              eq * forcingFactorRow<R>(c, k, u, v, Fx, Fy), plus + k, bar + k);
            else
                storeCollided(c.collideF, R::load(tilde + k), eq, plus + k, bar + k);
        });
    }
}

template <int Q>
void collideTemperature(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    const bool heated = c.heatSource != 0.0;
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const CellRecord& cell = d.cells[i];
        const double T = cell.T, u = cell.u, v = cell.v;
        const double* const tilde = d.gTilde + i * q;
        double* const plus = d.gTildePlus + i * q;
        double* const bar = d.gBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R eq = equilibriumRow<R>(c, k, T, u, v);
            if (heated)
                storeCollided(c.collideG, R::load(tilde + k), eq, heatSourceRow<R>(c, k, u, v), plus + k,
                              bar + k);
            else
                storeCollided(c.collideG, R::load(tilde + k), eq, plus + k, bar + k);
        });
    }
}

template <int Q>
void collideEnthalpy(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const CellRecord& cell = d.cells[i];
        const double H = cell.H, T = cell.T, u = cell.u, v = cell.v;
        const double* const tilde = d.gTilde + i * q;
        double* const plus = d.gTildePlus + i * q;
        double* const bar = d.gBarPlus + i * q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            storeCollided(c.collideG, R::load(tilde + k), enthalpyRow<R>(c, k, H, T, u, v), plus + k,
                          bar + k);
        });
        const double rest = c.collideG.A * tilde[0] + c.collideG.B * restEnthalpy(c, H, T, u, v);
        plus[0] = rest;
        bar[0] = (3.0 * rest + tilde[0]) * 0.25;
    }
}

template <int Q>
void collide(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    if (c.flowOn)
        collideFlow<Q>(c, d, first, last);
    if (c.heat == HeatForm::temperature)
        collideTemperature<Q>(c, d, first, last);
    else if (c.enthalpyForm())
        collideEnthalpy<Q>(c, d, first, last);
}

// ---- gradients ------------------------------------------------------------------------------------------

template <int Q>
void gradientsOf(const StepConstants& c, const StepData2D& d, const double* barPlus, double* gradient,
                 std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const std::int32_t begin = d.neighbourStart[i];
        const std::int32_t end = d.neighbourStart[i + 1];
        const double* const own = barPlus + i * q;
        double* const gx = gradient + 2 * i * q;
        double* const gy = gx + q;
        overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
            using R = decltype(row);
            const R centre = R::load(own + k);
            R sumX = R::zero();
            R sumY = R::zero();
            for (std::int32_t j = begin; j < end; ++j) {
                const R difference = centre - R::load(barPlus + d.neighbours[j] * q + k);
                sumX = sumX + difference * d.lsq[j].x;
                sumY = sumY + difference * d.lsq[j].y;
            }
            sumX.store(gx + k);
            sumY.store(gy + k);
        });
    }
}

template <int Q>
void gradients(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    if (c.flowOn)
        gradientsOf<Q>(c, d, d.fBarPlus, d.gradFBarPlus, first, last);
    if (c.heatOn())
        gradientsOf<Q>(c, d, d.gBarPlus, d.gradGBarPlus, first, last);
}

// ---- interior faces -------------------------------------------------------------------------------------

/// The bar value at the foot of the characteristic that ends at the face after half a step, from whichever
/// side is upwind.
template <int Q>
FLUVANE_FORCE_INLINE void reconstructRow(const StepConstants& c, const StepData2D& d, const FaceRecord& face,
                                         const double* barPlus, const double* gradient, double* out) {
    const std::ptrdiff_t q = stride<Q>(c);
    const CellRecord& cell0 = d.cells[face.c0];
    const CellRecord& cell1 = d.cells[face.c1];
    const double dx0 = face.xf - cell0.xc, dy0 = face.yf - cell0.yc;
    const double dx1 = face.xf - cell1.xc, dy1 = face.yf - cell1.yc;
    const double* const bar0 = barPlus + face.c0 * q;
    const double* const bar1 = barPlus + face.c1 * q;
    const double* const gx0 = gradient + 2 * q * face.c0;
    const double* const gx1 = gradient + 2 * q * face.c1;
    const double Sx = face.S0x, Sy = face.S0y;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        const R xix = R::load(c.xi[0] + k);
        const R xiy = R::load(c.xi[1] + k);
        const R side = xix * Sx + xiy * Sy;
        const R dx = R::select(side, dx0, dx1) - xix * c.halfStep;
        const R dy = R::select(side, dy0, dy1) - xiy * c.halfStep;
        const R bar = R::select(side, R::load(bar0 + k), R::load(bar1 + k));
        const R gx = R::select(side, R::load(gx0 + k), R::load(gx1 + k));
        const R gy = R::select(side, R::load(gx0 + q + k), R::load(gx1 + q + k));
        (bar + dx * gx + dy * gy).store(out + k);
    });
}

/// Temperature, force and, on solid faces, zero velocity from the reconstructed g.
template <int Q>
FLUVANE_FORCE_INLINE void thermalFaceMoments(const StepConstants& c, FaceRecord& face, const double* g) {
    if (c.heat == HeatForm::temperature) {
        face.T = sum<Q>(c, g);
    } else {
        face.H = sum<Q>(c, g);
        face.T = c.relation.temperatureOf(face.H);
    }
    face.Fx = 0.0;
    face.Fy = buoyancy(c, face.T);
    if (heldStill(c, face.H)) {
        face.u = 0.0;
        face.v = 0.0;
    }
}

template <int Q>
void reconstruct(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        FaceRecord& face = d.faces[i];
        if (c.heatOn()) {
            double* const g = d.gFace + i * q;
            reconstructRow<Q>(c, d, face, d.gBarPlus, d.gradGBarPlus, g);
            thermalFaceMoments<Q>(c, face, g);
        }
        if (c.flowOn) {
            double* const f = d.fFace + i * q;
            reconstructRow<Q>(c, d, face, d.fBarPlus, d.gradFBarPlus, f);
            const FlowMoments m = flowMoments<Q>(c, f);
            face.rho = m.rho;
            face.u = m.mx / m.rho + c.quarterStep * face.Fx;
            face.v = m.my / m.rho + c.quarterStep * face.Fy;
        }
    }
}

// ---- boundary faces -------------------------------------------------------------------------------------

/// Flow and thermal kinds as the boundary records number them.
enum : std::int32_t { outflow = 2, constantTemperature = 1, constantFlux = 2 };

/// Reconstruction from the one cell of a boundary face for one velocity.
struct OneSided {
    const double* bar;
    const double* gx;
    const double* gy;
    double dx, dy, h;

    double operator()(const StepConstants& c, int k) const {
        return bar[k] + (dx - c.xi[0][k] * h) * gx[k] + (dy - c.xi[1][k] * h) * gy[k];
    }
};

OneSided oneSided(const StepConstants& c, const StepData2D& d, const FaceRecord& face, const double* barPlus,
                  const double* gradient) {
    const std::ptrdiff_t q = c.velocityCount;
    const CellRecord& cell = d.cells[face.c0];
    const double* const gx = gradient + 2 * q * face.c0;
    return {barPlus + face.c0 * q, gx, gx + q, face.xf - cell.xc, face.yf - cell.yc, c.halfStep};
}

double outward(const StepConstants& c, const FaceRecord& face, int k) {
    return c.xi[0][k] * face.S0x + c.xi[1][k] * face.S0y;
}

/// Fills gFace from the thermal condition; returns the sum that a constant-flux wall gathers per visit.
/// Deliberate: a tangential pair is visited twice, the later visit overwrites the earlier's mirror and both
/// count in the sum.
double mirrorHeat(const StepConstants& c, const FaceRecord& face, const OneSided& reconstructed, double* g) {
    const double length = std::sqrt(face.S0x * face.S0x + face.S0y * face.S0y);
    double gathered = 0.0;
    for (int k = 0; k < c.velocityCount; ++k) {
        if (!(outward(c, face, k) >= 0.0))
            continue;
        const int mirrored = c.opposite[k];
        g[k] = reconstructed(c, k);
        if (face.thermalKind == constantFlux) {
            gathered += g[k];
            if (k > 0) {
                g[mirrored] = g[k] - (2.0 * c.tauG + c.halfStep) * face.q * c.weights[k] *
                                         outward(c, face, mirrored) / (c.alpha * length);
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

void boundaryHeat(const StepConstants& c, const StepData2D& d, FaceRecord& face, double* g) {
    const CellRecord& cell = d.cells[face.c0];
    const double gathered = mirrorHeat(c, face, oneSided(c, d, face, d.gBarPlus, d.gradGBarPlus), g);
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
    const CellRecord& cell = d.cells[face.c0];
    const OneSided reconstructed = oneSided(c, d, face, d.fBarPlus, d.gradFBarPlus);
    face.rho = cell.rho;
    const bool open = face.flowKind == outflow;
    if (open) {
        face.u = cell.u;
        face.v = cell.v;
    }
    for (int k = 0; k < c.velocityCount; ++k) {
        if (!(outward(c, face, k) >= 0.0))
            continue;
        const int mirrored = c.opposite[k];
        f[k] = reconstructed(c, k);
        if (open)
            f[mirrored] = reconstructed.bar[mirrored];
        else
            f[mirrored] = f[k] - 2.0 * c.weights[k] * face.rho * (c.xi[0][k] * face.u + c.xi[1][k] * face.v) *
                                     c.polynomial.inverseRT;
    }
}

void boundary(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
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
FLUVANE_FORCE_INLINE void recoverHeat(const StepConstants& c, const FaceRecord& face, double* g) {
    const double T = face.T, u = face.u, v = face.v;
    const RecoveryFactors& r = c.recoverG;
    const bool heated = c.heatSource != 0.0;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        // Deliberate: the temperature form in both thermal modes.
        R out = r.a * R::load(g + k) + r.b * equilibriumRow<R>(c, k, T, u, v);
        if (heated)
            out = out + r.c * heatSourceRow<R>(c, k, u, v);
        out.store(g + k);
    });
}

template <int Q>
FLUVANE_FORCE_INLINE void recoverFlow(const StepConstants& c, const FaceRecord& face, double* f) {
    const double rho = face.rho, u = face.u, v = face.v, Fx = face.Fx, Fy = face.Fy;
    const RecoveryFactors& r = c.recoverF;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        const R eq = equilibriumRow<R>(c, k, rho, u, v);
        R out = r.a * R::load(f + k) + r.b * eq;
        if (forced(Fx, Fy))
            out = out + r.c * (eq * forcingFactorRow<R>(c, k, u, v, Fx, Fy));
        out.store(f + k);
    });
}

template <int Q>
void recover(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    const std::ptrdiff_t q = stride<Q>(c);
    for (std::ptrdiff_t i = first; i < last; ++i) {
        const FaceRecord& face = d.faces[i];
        if (c.heatOn())
            recoverHeat<Q>(c, face, d.gFace + i * q);
        if (c.flowOn)
            recoverFlow<Q>(c, face, d.fFace + i * q);
    }
}

// ---- update ---------------------------------------------------------------------------------------------

/// tilde = plus - dt/area times the sum of the outward fluxes, faces in the order they were attached.
template <int Q>
FLUVANE_FORCE_INLINE void addFluxes(const StepConstants& c, const CellRecord& cell, const double* facePool,
                                    const double* plus, double* tilde) {
    const std::ptrdiff_t q = stride<Q>(c);
    const double rate = c.dt / cell.area;
    overVelocities<Q>(c.velocityCount, [&](auto row, int k) {
        using R = decltype(row);
        const R xix = R::load(c.xi[0] + k);
        const R xiy = R::load(c.xi[1] + k);
        R flux = R::zero();
        for (std::size_t j = 0; j < static_cast<std::size_t>(cell.faceCount); ++j) {
            const Vec2 S = cell.S[j];
            flux = flux + (xix * S.x + xiy * S.y) * R::load(facePool + cell.faces[j] * q + k);
        }
        (R::load(plus + k) - rate * flux).store(tilde + k);
    });
}

template <int Q>
FLUVANE_FORCE_INLINE void updateFlow(const StepConstants& c, const StepData2D& d, std::ptrdiff_t i) {
    const std::ptrdiff_t q = stride<Q>(c);
    CellRecord& cell = d.cells[i];
    cell.uPrev = cell.u;
    cell.vPrev = cell.v;
    double* const tilde = d.fTilde + i * q;
    addFluxes<Q>(c, cell, d.fFace, d.fTildePlus + i * q, tilde);
    const FlowMoments m = flowMoments<Q>(c, tilde);
    cell.rho = m.rho;
    cell.u = m.mx / m.rho + c.halfStep * cell.Fx;
    cell.v = m.my / m.rho + c.halfStep * cell.Fy;
}

template <int Q>
FLUVANE_FORCE_INLINE void updateHeat(const StepConstants& c, const StepData2D& d, std::ptrdiff_t i) {
    const std::ptrdiff_t q = stride<Q>(c);
    CellRecord& cell = d.cells[i];
    cell.TPrev = cell.T;
    double* const tilde = d.gTilde + i * q;
    addFluxes<Q>(c, cell, d.gFace, d.gTildePlus + i * q, tilde);
    const double total = sum<Q>(c, tilde);
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
void update(const StepConstants& c, const StepData2D& d, std::int32_t first, std::int32_t last) {
    for (std::ptrdiff_t i = first; i < last; ++i) {
        if (c.flowOn)
            updateFlow<Q>(c, d, i);
        if (c.heatOn())
            updateHeat<Q>(c, d, i);
    }
}

template <int Q>
constexpr LoopKernels2D kernelsFor() {
    return {&collide<Q>, &gradients<Q>, &reconstruct<Q>, &boundary, &recover<Q>, &update<Q>};
}

} // namespace

const LoopKernels2D& loopKernels2D(int velocityCount) {
    static constexpr LoopKernels2D nine = kernelsFor<9>();
    static constexpr LoopKernels2D any = kernelsFor<0>();
    return velocityCount == 9 ? nine : any;
}

} // namespace fluvane::FLUVANE_ISA
