// The plain 2D scheme: no pools, no vectors of velocities, no factors divided out beforehand.
#include "plain_reference/plain_solver_2d.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace fluvane::plain {

namespace {

Cell copyOf(const CellRecord& r, int Q) {
    Cell c{};
    c.xc = r.xc;
    c.yc = r.yc;
    c.area = r.area;
    c.faceCount = r.faceCount;
    c.neighbourCount = r.neighbourCount;
    for (std::size_t j = 0; j < 4; ++j) {
        c.faces[j] = r.faces[j];
        c.Sx[j] = r.S[j].x;
        c.Sy[j] = r.S[j].y;
    }
    c.rho = r.rho;
    c.u = r.u;
    c.v = r.v;
    c.uPrev = r.uPrev;
    c.vPrev = r.vPrev;
    c.T = r.T;
    c.TPrev = r.TPrev;
    c.H = r.H;
    c.Fx = r.Fx;
    c.Fy = r.Fy;
    c.fTilde = copyOfArray(r.fTilde, Q);
    c.fBarPlus = copyOfArray(r.fBarPlus, Q);
    c.fTildePlus = copyOfArray(r.fTildePlus, Q);
    c.gTilde = copyOfArray(r.gTilde, Q);
    c.gBarPlus = copyOfArray(r.gBarPlus, Q);
    c.gTildePlus = copyOfArray(r.gTildePlus, Q);
    c.dfdx = copyOfArray(r.gradFBarPlus.x, Q);
    c.dfdy = copyOfArray(r.gradFBarPlus.y, Q);
    c.dgdx = copyOfArray(r.gradGBarPlus.x, Q);
    c.dgdy = copyOfArray(r.gradGBarPlus.y, Q);
    for (int j = 0; j < r.neighbourCount; ++j) {
        c.neighbours[j] = r.neighbours[j];
        c.wx[j] = r.lsq[j].x;
        c.wy[j] = r.lsq[j].y;
    }
    return c;
}

Face copyOf(const FaceRecord& r, int Q) {
    Face f{};
    f.xf = r.xf;
    f.yf = r.yf;
    f.rho = r.rho;
    f.u = r.u;
    f.v = r.v;
    f.T = r.T;
    f.H = r.H;
    f.Fx = r.Fx;
    f.Fy = r.Fy;
    f.q = r.q;
    f.fFace = copyOfArray(r.fFace, Q);
    f.gFace = copyOfArray(r.gFace, Q);
    f.thermalKind = r.thermalKind;
    f.flowKind = r.flowKind;
    f.c0 = r.c0;
    f.c1 = r.c1;
    f.S0x = r.S0x;
    f.S0y = r.S0y;
    return f;
}

} // namespace

PlainSolver2D::PlainSolver2D()
    : Q(velocitySet.velocityCount), flowOn(caseSettings.flowOn == 1), heatOn(caseSettings.heatOn),
      enthalpyForm(caseSettings.thermalMode == 1), buoyancyOn(caseSettings.buoyancyOn),
      lftfOn(caseSettings.lftfOn), RT(caseSettings.RT), dt(caseSettings.dt), tauF(caseSettings.tauF),
      tauG(caseSettings.tauG), alpha(caseSettings.alpha), buoyancyCoeff(caseSettings.buoyancyCoeff),
      heatSource(caseSettings.heatSource), Tm(caseSettings.Tm), dTm(caseSettings.dTm),
      latentHeat(caseSettings.latentHeat), cpSolid(caseSettings.cpSolid), cpLiquid(caseSettings.cpLiquid),
      Hsolidus(caseSettings.Hsolidus), Hliquidus(caseSettings.Hliquidus),
      m_interiorFaceCount(mesh.interiorFaceCount) {
    for (std::size_t k = 0; k < 30; ++k) {
        xix[k] = velocitySet.xi2D[k].x;
        xiy[k] = velocitySet.xi2D[k].y;
        w[k] = velocitySet.weights[k];
        opposite[k] = velocitySet.opposite[k];
    }
    for (const CellRecord& record : mesh.cells2D)
        m_cells.push_back(copyOf(record, Q));
    for (const FaceRecord& record : mesh.faces2D)
        m_faces.push_back(copyOf(record, Q));
}

double PlainSolver2D::feq(int k, double phi, double u, double v) const {
    const double e = xix[k] * u + xiy[k] * v;
    const double q = u * u + v * v;
    return w[k] * phi * (1.0 + e / RT + e * e / (2.0 * RT * RT) - q / (2.0 * RT));
}

double PlainSolver2D::geqH(int k, double H, double T, double u, double v) const {
    const double q = u * u + v * v;
    if (!lftfOn)
        return k == 0 ? w[0] * T * (1.0 - q / (2.0 * RT)) + (H - T) : feq(k, T, u, v);
    return k == 0 ? w[0] * T + (H - T) - q / (2.0 * RT) * w[0] * H : feq(k, H, u, v) + w[k] * (T - H);
}

double PlainSolver2D::forcing(int k, double rho, double u, double v, double Fx, double Fy) const {
    return feq(k, rho, u, v) * ((xix[k] - u) * Fx + (xiy[k] - v) * Fy) / RT;
}

double PlainSolver2D::source(int k, double u, double v) const {
    return w[k] * heatSource * (1.0 + (xix[k] * u + xiy[k] * v) / RT);
}

double PlainSolver2D::enthalpyOf(double T) const {
    const double x = T - Tm;
    if (T < Tm - dTm)
        return cpSolid * dTm + cpSolid * x;
    if (T <= Tm + dTm)
        return (latentHeat / (2.0 * dTm) + (cpLiquid + cpSolid) / 2.0) * x +
               (cpLiquid + cpSolid) / 2.0 * dTm + latentHeat / 2.0;
    return cpSolid * dTm + cpLiquid * x + latentHeat;
}

double PlainSolver2D::temperatureOf(double H) const {
    if (H < Hsolidus)
        return (H - dTm * cpSolid) / cpSolid + Tm;
    if (H <= Hliquidus)
        return (H - (cpLiquid + cpSolid) / 2.0 * dTm - latentHeat / 2.0) /
                   (latentHeat / (2.0 * dTm) + (cpLiquid + cpSolid) / 2.0) +
               Tm;
    return (H - dTm * cpSolid - latentHeat) / cpLiquid + Tm;
}

double PlainSolver2D::liquidFraction(double H) const {
    if (H < Hsolidus)
        return 0.0;
    if (H > Hliquidus)
        return 1.0;
    return (H - Hsolidus) / (Hliquidus - Hsolidus);
}

void PlainSolver2D::collideCell(Cell& c) const {
    if (flowOn) {
        const double A = (2.0 * tauF - dt) / (2.0 * tauF + dt);
        const double B = 2.0 * dt / (2.0 * tauF + dt);
        const double C = 2.0 * tauF * dt / (2.0 * tauF + dt);
        for (int k = 0; k < Q; ++k) {
            c.fTildePlus[k] =
                A * c.fTilde[k] + B * feq(k, c.rho, c.u, c.v) + C * forcing(k, c.rho, c.u, c.v, c.Fx, c.Fy);
            c.fBarPlus[k] = (3.0 * c.fTildePlus[k] + c.fTilde[k]) / 4.0;
        }
    }
    if (heatOn) {
        const double A = (2.0 * tauG - dt) / (2.0 * tauG + dt);
        const double B = 2.0 * dt / (2.0 * tauG + dt);
        const double C = 2.0 * tauG * dt / (2.0 * tauG + dt);
        for (int k = 0; k < Q; ++k) {
            if (enthalpyForm)
                c.gTildePlus[k] = A * c.gTilde[k] + B * geqH(k, c.H, c.T, c.u, c.v);
            else
                c.gTildePlus[k] = A * c.gTilde[k] + B * feq(k, c.T, c.u, c.v) + C * source(k, c.u, c.v);
            c.gBarPlus[k] = (3.0 * c.gTildePlus[k] + c.gTilde[k]) / 4.0;
        }
    }
}

void PlainSolver2D::computeCellGradients(Cell& c) const {
    if (flowOn) {
        std::fill_n(c.dfdx.get(), Q, 0.0);
        std::fill_n(c.dfdy.get(), Q, 0.0);
        for (int j = 0; j < c.neighbourCount; ++j) {
            const Cell& n = m_cells[static_cast<std::size_t>(c.neighbours[j])];
            for (int k = 0; k < Q; ++k) {
                c.dfdx[k] += (c.fBarPlus[k] - n.fBarPlus[k]) * c.wx[j];
                c.dfdy[k] += (c.fBarPlus[k] - n.fBarPlus[k]) * c.wy[j];
            }
        }
    }
    if (heatOn) {
        std::fill_n(c.dgdx.get(), Q, 0.0);
        std::fill_n(c.dgdy.get(), Q, 0.0);
        for (int j = 0; j < c.neighbourCount; ++j) {
            const Cell& n = m_cells[static_cast<std::size_t>(c.neighbours[j])];
            for (int k = 0; k < Q; ++k) {
                c.dgdx[k] += (c.gBarPlus[k] - n.gBarPlus[k]) * c.wx[j];
                c.dgdy[k] += (c.gBarPlus[k] - n.gBarPlus[k]) * c.wy[j];
            }
        }
    }
}

void PlainSolver2D::reconstructInteriorFace(Face& face) const {
    const Cell& cell0 = m_cells[static_cast<std::size_t>(face.c0)];
    const Cell& cell1 = m_cells[static_cast<std::size_t>(face.c1)];
    const double h = dt / 2.0;
    if (heatOn) {
        double total = 0.0;
        for (int k = 0; k < Q; ++k) {
            const Cell& up = xix[k] * face.S0x + xiy[k] * face.S0y >= 0.0 ? cell0 : cell1;
            face.gFace[k] = up.gBarPlus[k] + (face.xf - up.xc - xix[k] * h) * up.dgdx[k] +
                            (face.yf - up.yc - xiy[k] * h) * up.dgdy[k];
            total += face.gFace[k];
        }
        face.H = enthalpyForm ? total : face.H;
        face.T = enthalpyForm ? temperatureOf(total) : total;
        face.Fx = 0.0;
        face.Fy = buoyancyOn ? buoyancyCoeff * face.T : 0.0;
        if (enthalpyForm && liquidFraction(face.H) < 0.5 && !lftfOn)
            face.u = face.v = 0.0;
    }
    if (flowOn) {
        double rho = 0.0, mx = 0.0, my = 0.0;
        for (int k = 0; k < Q; ++k) {
            const Cell& up = xix[k] * face.S0x + xiy[k] * face.S0y >= 0.0 ? cell0 : cell1;
            face.fFace[k] = up.fBarPlus[k] + (face.xf - up.xc - xix[k] * h) * up.dfdx[k] +
                            (face.yf - up.yc - xiy[k] * h) * up.dfdy[k];
            rho += face.fFace[k];
            mx += xix[k] * face.fFace[k];
            my += xiy[k] * face.fFace[k];
        }
        face.rho = rho;
        face.u = mx / rho + dt / 4.0 * face.Fx;
        face.v = my / rho + dt / 4.0 * face.Fy;
    }
}

void PlainSolver2D::boundaryHeat(Face& face) const {
    const Cell& c = m_cells[static_cast<std::size_t>(face.c0)];
    const double h = dt / 2.0;
    const double length = std::sqrt(face.S0x * face.S0x + face.S0y * face.S0y);
    double total = 0.0;
    for (int k = 0; k < Q; ++k) {
        if (!(xix[k] * face.S0x + xiy[k] * face.S0y >= 0.0))
            continue;
        const int o = opposite[k];
        face.gFace[k] = c.gBarPlus[k] + (face.xf - c.xc - xix[k] * h) * c.dgdx[k] +
                        (face.yf - c.yc - xiy[k] * h) * c.dgdy[k];
        total += face.gFace[k];
        if (k == 0)
            continue;
        if (face.thermalKind == 1)
            face.gFace[o] = 2.0 * w[k] * face.T - face.gFace[k];
        else if (face.thermalKind == 2)
            face.gFace[o] = face.gFace[k] - (2.0 * tauG + h) * face.q * w[k] *
                                                (xix[o] * face.S0x + xiy[o] * face.S0y) / (alpha * length);
        else
            face.gFace[o] = face.gFace[k];
        total += face.gFace[o];
    }
    if (!enthalpyForm) {
        if (face.thermalKind == 0)
            face.T = c.T;
        if (face.thermalKind == 2)
            face.T = total;
    } else {
        if (face.thermalKind == 0)
            face.H = c.H;
        if (face.thermalKind == 1)
            face.H = enthalpyOf(face.T);
        if (face.thermalKind == 2)
            face.H = total;
        face.T = temperatureOf(face.H);
    }
    if (buoyancyOn) {
        face.Fx = 0.0;
        face.Fy = buoyancyCoeff * face.T;
    }
    if (enthalpyForm && liquidFraction(face.H) < 0.5 && !lftfOn)
        face.u = face.v = 0.0;
}

void PlainSolver2D::boundaryFlow(Face& face) const {
    const Cell& c = m_cells[static_cast<std::size_t>(face.c0)];
    const double h = dt / 2.0;
    face.rho = c.rho;
    if (face.flowKind == 2) {
        face.u = c.u;
        face.v = c.v;
    }
    for (int k = 0; k < Q; ++k) {
        if (!(xix[k] * face.S0x + xiy[k] * face.S0y >= 0.0))
            continue;
        const int o = opposite[k];
        face.fFace[k] = c.fBarPlus[k] + (face.xf - c.xc - xix[k] * h) * c.dfdx[k] +
                        (face.yf - c.yc - xiy[k] * h) * c.dfdy[k];
        if (face.flowKind == 2)
            face.fFace[o] = c.fBarPlus[o];
        else
            face.fFace[o] = face.fFace[k] - 2.0 * w[k] * face.rho * (xix[k] * face.u + xiy[k] * face.v) / RT;
    }
}

void PlainSolver2D::treatBoundaryFace(Face& face) const {
    if (heatOn)
        boundaryHeat(face);
    if (flowOn)
        boundaryFlow(face);
}

void PlainSolver2D::recoverFaceDistributions(Face& face) const {
    const double h = dt / 2.0;
    if (heatOn) {
        for (int k = 0; k < Q; ++k)
            face.gFace[k] =
                (2.0 * tauG * face.gFace[k] + h * feq(k, face.T, face.u, face.v)) / (2.0 * tauG + h) +
                tauG * h * source(k, face.u, face.v) / (2.0 * tauG + h);
    }
    if (flowOn) {
        for (int k = 0; k < Q; ++k)
            face.fFace[k] =
                (2.0 * tauF * face.fFace[k] + h * feq(k, face.rho, face.u, face.v)) / (2.0 * tauF + h) +
                tauF * h * forcing(k, face.rho, face.u, face.v, face.Fx, face.Fy) / (2.0 * tauF + h);
    }
}

void PlainSolver2D::updateCell(Cell& c) const {
    if (flowOn) {
        c.uPrev = c.u;
        c.vPrev = c.v;
        double rho = 0.0, mx = 0.0, my = 0.0;
        for (int k = 0; k < Q; ++k) {
            double flux = 0.0;
            for (int j = 0; j < c.faceCount; ++j)
                flux += (xix[k] * c.Sx[j] + xiy[k] * c.Sy[j]) *
                        m_faces[static_cast<std::size_t>(c.faces[j])].fFace[k];
            c.fTilde[k] = c.fTildePlus[k] - dt * flux / c.area;
            rho += c.fTilde[k];
            mx += xix[k] * c.fTilde[k];
            my += xiy[k] * c.fTilde[k];
        }
        c.rho = rho;
        c.u = mx / rho + dt / 2.0 * c.Fx;
        c.v = my / rho + dt / 2.0 * c.Fy;
    }
    if (heatOn) {
        c.TPrev = c.T;
        double total = 0.0;
        for (int k = 0; k < Q; ++k) {
            double flux = 0.0;
            for (int j = 0; j < c.faceCount; ++j)
                flux += (xix[k] * c.Sx[j] + xiy[k] * c.Sy[j]) *
                        m_faces[static_cast<std::size_t>(c.faces[j])].gFace[k];
            c.gTilde[k] = c.gTildePlus[k] - dt * flux / c.area;
            total += c.gTilde[k];
        }
        c.H = enthalpyForm ? total : c.H;
        c.T = enthalpyForm ? temperatureOf(total) : total;
        c.Fx = 0.0;
        c.Fy = buoyancyOn ? buoyancyCoeff * c.T : 0.0;
        if (enthalpyForm && liquidFraction(c.H) < 0.5 && !lftfOn)
            c.u = c.v = 0.0;
    }
}

void PlainSolver2D::step() {
    const auto cells = static_cast<std::ptrdiff_t>(m_cells.size());
    const auto faces = static_cast<std::ptrdiff_t>(m_faces.size());
    const std::ptrdiff_t interior = m_interiorFaceCount;
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < cells; ++i)
        collideCell(m_cells[static_cast<std::size_t>(i)]);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < cells; ++i)
        computeCellGradients(m_cells[static_cast<std::size_t>(i)]);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < interior; ++i)
        reconstructInteriorFace(m_faces[static_cast<std::size_t>(i)]);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = interior; i < faces; ++i)
        treatBoundaryFace(m_faces[static_cast<std::size_t>(i)]);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < faces; ++i)
        recoverFaceDistributions(m_faces[static_cast<std::size_t>(i)]);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < cells; ++i)
        updateCell(m_cells[static_cast<std::size_t>(i)]);
}

} // namespace fluvane::plain
