// The plain 3D scheme: no pools, no vectors of velocities, no factors divided out beforehand.
#include "plain_reference/plain_solver_3d.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"

#include <cmath>

namespace fluvane::plain {

namespace {

Cell3D copyOf(const CellRecord3D& r, int Q) {
    Cell3D c{};
    c.xc = r.xc;
    c.yc = r.yc;
    c.zc = r.zc;
    c.volume = r.volume;
    c.faceCount = r.faceCount;
    c.neighbourCount = r.neighbourCount;
    for (std::size_t j = 0; j < 6; ++j) {
        c.faces[j] = r.faces[j];
        c.Nx[j] = r.normals[j].x;
        c.Ny[j] = r.normals[j].y;
        c.Nz[j] = r.normals[j].z;
    }
    c.rho = r.rho;
    c.u = r.u;
    c.v = r.v;
    c.w = r.w;
    c.uPrev = r.uPrev;
    c.vPrev = r.vPrev;
    c.wPrev = r.wPrev;
    c.T = r.T;
    c.TPrev = r.TPrev;
    c.H = r.H;
    c.Fx = r.Fx;
    c.Fy = r.Fy;
    c.Fz = r.Fz;
    c.fTilde = copyOfArray(r.fTilde, Q);
    c.fBarPlus = copyOfArray(r.fBarPlus, Q);
    c.fTildePlus = copyOfArray(r.fTildePlus, Q);
    c.gTilde = copyOfArray(r.gTilde, Q);
    c.gBarPlus = copyOfArray(r.gBarPlus, Q);
    c.gTildePlus = copyOfArray(r.gTildePlus, Q);
    c.dfdx = copyOfArray(r.gradFBarPlus.x, Q);
    c.dfdy = copyOfArray(r.gradFBarPlus.y, Q);
    c.dfdz = copyOfArray(r.gradFBarPlus.z, Q);
    c.dgdx = copyOfArray(r.gradGBarPlus.x, Q);
    c.dgdy = copyOfArray(r.gradGBarPlus.y, Q);
    c.dgdz = copyOfArray(r.gradGBarPlus.z, Q);
    for (int j = 0; j < r.neighbourCount; ++j) {
        c.neighbours[j] = r.neighbours[j];
        c.wx[j] = r.lsq[j].x;
        c.wy[j] = r.lsq[j].y;
        c.wz[j] = r.lsq[j].z;
    }
    return c;
}

Face3D copyOf(const FaceRecord3D& r, int Q) {
    Face3D f{};
    f.xf = r.xf;
    f.yf = r.yf;
    f.zf = r.zf;
    f.area = r.area;
    f.rho = r.rho;
    f.u = r.u;
    f.v = r.v;
    f.w = r.w;
    f.T = r.T;
    f.Fx = r.Fx;
    f.Fy = r.Fy;
    f.Fz = r.Fz;
    f.q = r.q;
    f.fFace = copyOfArray(r.fFace, Q);
    f.gFace = copyOfArray(r.gFace, Q);
    f.thermalKind = r.thermalKind;
    f.flowKind = r.flowKind;
    f.c0 = r.c0;
    f.c1 = r.c1;
    f.nx = r.n0x;
    f.ny = r.n0y;
    f.nz = r.n0z;
    return f;
}

} // namespace

PlainSolver3D::PlainSolver3D()
    : Q(velocitySet.velocityCount), flowOn(caseSettings.flowOn == 1), heatOn(caseSettings.heatOn),
      enthalpyForm(caseSettings.thermalMode == 1), buoyancyOn(caseSettings.buoyancyOn), RT(caseSettings.RT),
      dt(caseSettings.dt), tauF(caseSettings.tauF), tauG(caseSettings.tauG), alpha(caseSettings.alpha),
      buoyancyCoeff(caseSettings.buoyancyCoeff), Tm(caseSettings.Tm), dTm(caseSettings.dTm),
      latentHeat(caseSettings.latentHeat), cpSolid(caseSettings.cpSolid), cpLiquid(caseSettings.cpLiquid),
      Hsolidus(caseSettings.Hsolidus), Hliquidus(caseSettings.Hliquidus),
      m_interiorFaceCount(mesh.interiorFaceCount) {
    for (std::size_t k = 0; k < 30; ++k) {
        xix[k] = velocitySet.xi3D[k].x;
        xiy[k] = velocitySet.xi3D[k].y;
        xiz[k] = velocitySet.xi3D[k].z;
        weight[k] = velocitySet.weights[k];
        opposite[k] = velocitySet.opposite[k];
    }
    for (const CellRecord3D& record : mesh.cells3D)
        m_cells.push_back(copyOf(record, Q));
    for (const FaceRecord3D& record : mesh.faces3D)
        m_faces.push_back(copyOf(record, Q));
}

double PlainSolver3D::feq(int k, double phi, double u, double v, double w) const {
    const double e = xix[k] * u + xiy[k] * v + xiz[k] * w;
    const double q = u * u + v * v + w * w;
    return weight[k] * phi * (1.0 + e / RT + e * e / (2.0 * RT * RT) - q / (2.0 * RT));
}

double PlainSolver3D::forcing(int k, double rho, double u, double v, double w, double Fx, double Fy,
                              double Fz) const {
    return feq(k, rho, u, v, w) * ((xix[k] - u) * Fx + (xiy[k] - v) * Fy + (xiz[k] - w) * Fz) / RT;
}

double PlainSolver3D::temperatureOf(double H) const {
    if (H < Hsolidus)
        return (H - dTm * cpSolid) / cpSolid + Tm;
    if (H <= Hliquidus)
        return (H - (cpLiquid + cpSolid) / 2.0 * dTm - latentHeat / 2.0) /
                   (latentHeat / (2.0 * dTm) + (cpLiquid + cpSolid) / 2.0) +
               Tm;
    return (H - dTm * cpSolid - latentHeat) / cpLiquid + Tm;
}

void PlainSolver3D::collideCell(Cell3D& c) const {
    if (flowOn) {
        const double A = (2.0 * tauF - dt) / (2.0 * tauF + dt);
        const double B = 2.0 * dt / (2.0 * tauF + dt);
        const double C = 2.0 * tauF * dt / (2.0 * tauF + dt);
        for (int k = 0; k < Q; ++k) {
            c.fTildePlus[k] = A * c.fTilde[k] + B * feq(k, c.rho, c.u, c.v, c.w) +
                              C * forcing(k, c.rho, c.u, c.v, c.w, c.Fx, c.Fy, c.Fz);
            c.fBarPlus[k] = (3.0 * c.fTildePlus[k] + c.fTilde[k]) / 4.0;
        }
    }
    if (heatOn) {
        const double A = (2.0 * tauG - dt) / (2.0 * tauG + dt);
        const double B = 2.0 * dt / (2.0 * tauG + dt);
        for (int k = 0; k < Q; ++k) {
            c.gTildePlus[k] = A * c.gTilde[k] + B * feq(k, c.T, c.u, c.v, c.w);
            c.gBarPlus[k] = (3.0 * c.gTildePlus[k] + c.gTilde[k]) / 4.0;
        }
    }
}

void PlainSolver3D::computeCellGradients(Cell3D& c) const {
    if (flowOn) {
        for (int k = 0; k < Q; ++k)
            c.dfdx[k] = c.dfdy[k] = c.dfdz[k] = 0.0;
        for (int j = 0; j < c.neighbourCount; ++j) {
            const Cell3D& n = m_cells[static_cast<std::size_t>(c.neighbours[j])];
            for (int k = 0; k < Q; ++k) {
                c.dfdx[k] += (c.fBarPlus[k] - n.fBarPlus[k]) * c.wx[j];
                c.dfdy[k] += (c.fBarPlus[k] - n.fBarPlus[k]) * c.wy[j];
                c.dfdz[k] += (c.fBarPlus[k] - n.fBarPlus[k]) * c.wz[j];
            }
        }
    }
    if (heatOn) {
        for (int k = 0; k < Q; ++k)
            c.dgdx[k] = c.dgdy[k] = c.dgdz[k] = 0.0;
        for (int j = 0; j < c.neighbourCount; ++j) {
            const Cell3D& n = m_cells[static_cast<std::size_t>(c.neighbours[j])];
            for (int k = 0; k < Q; ++k) {
                c.dgdx[k] += (c.gBarPlus[k] - n.gBarPlus[k]) * c.wx[j];
                c.dgdy[k] += (c.gBarPlus[k] - n.gBarPlus[k]) * c.wy[j];
                c.dgdz[k] += (c.gBarPlus[k] - n.gBarPlus[k]) * c.wz[j];
            }
        }
    }
}

double PlainSolver3D::outward(const Face3D& face, int k) const {
    return xix[k] * face.nx + xiy[k] * face.ny + xiz[k] * face.nz;
}

double PlainSolver3D::fBar(const Face3D& face, const Cell3D& from, int k) const {
    const double h = dt / 2.0;
    return from.fBarPlus[k] + (face.xf - from.xc - xix[k] * h) * from.dfdx[k] +
           (face.yf - from.yc - xiy[k] * h) * from.dfdy[k] + (face.zf - from.zc - xiz[k] * h) * from.dfdz[k];
}

double PlainSolver3D::gBar(const Face3D& face, const Cell3D& from, int k) const {
    const double h = dt / 2.0;
    return from.gBarPlus[k] + (face.xf - from.xc - xix[k] * h) * from.dgdx[k] +
           (face.yf - from.yc - xiy[k] * h) * from.dgdy[k] + (face.zf - from.zc - xiz[k] * h) * from.dgdz[k];
}

void PlainSolver3D::recoverHeat(Face3D& face) const {
    const double h = dt / 2.0;
    for (int k = 0; k < Q; ++k)
        face.gFace[k] =
            (2.0 * tauG * face.gFace[k] + h * feq(k, face.T, face.u, face.v, face.w)) / (2.0 * tauG + h);
}

void PlainSolver3D::recoverFlow(Face3D& face) const {
    const double h = dt / 2.0;
    for (int k = 0; k < Q; ++k)
        face.fFace[k] =
            (2.0 * tauF * face.fFace[k] + h * feq(k, face.rho, face.u, face.v, face.w)) / (2.0 * tauF + h) +
            tauF * h * forcing(k, face.rho, face.u, face.v, face.w, face.Fx, face.Fy, face.Fz) /
                (2.0 * tauF + h);
}

void PlainSolver3D::reconstructInteriorFace(Face3D& face) const {
    const Cell3D& cell0 = m_cells[static_cast<std::size_t>(face.c0)];
    const Cell3D& cell1 = m_cells[static_cast<std::size_t>(face.c1)];
    face.T = 0.0;
    if (heatOn) {
        for (int k = 0; k < Q; ++k) {
            face.gFace[k] = gBar(face, outward(face, k) >= 0.0 ? cell0 : cell1, k);
            face.T += face.gFace[k];
        }
        face.Fx = face.Fy = 0.0;
        face.Fz = buoyancyOn ? buoyancyCoeff * face.T : 0.0;
        recoverHeat(face);
    }
    if (flowOn) {
        double rho = 0.0, mx = 0.0, my = 0.0, mz = 0.0;
        for (int k = 0; k < Q; ++k) {
            face.fFace[k] = fBar(face, outward(face, k) >= 0.0 ? cell0 : cell1, k);
            rho += face.fFace[k];
            mx += xix[k] * face.fFace[k];
            my += xiy[k] * face.fFace[k];
            mz += xiz[k] * face.fFace[k];
        }
        face.rho = rho;
        face.u = mx / rho + dt / 4.0 * face.Fx;
        face.v = my / rho + dt / 4.0 * face.Fy;
        face.w = mz / rho + dt / 4.0 * face.Fz;
        recoverFlow(face);
    }
}

void PlainSolver3D::treatBoundaryFaceHeat(Face3D& face) const {
    const Cell3D& c = m_cells[static_cast<std::size_t>(face.c0)];
    const double h = dt / 2.0;
    const double length = std::sqrt(face.nx * face.nx + face.ny * face.ny + face.nz * face.nz);
    if (face.thermalKind == 0)
        face.T = c.T;
    if (face.thermalKind == 2)
        face.T = 0.0;
    for (int k = 0; k < Q; ++k) {
        if (!(outward(face, k) >= 0.0))
            continue;
        const int o = opposite[k];
        face.gFace[k] = gBar(face, c, k);
        if (face.thermalKind == 2)
            face.T += face.gFace[k];
        if (k == 0)
            continue;
        if (face.thermalKind == 0)
            face.gFace[o] = face.gFace[k];
        if (face.thermalKind == 1)
            face.gFace[o] = 2.0 * weight[k] * face.T - face.gFace[k];
        if (face.thermalKind == 2) {
            face.gFace[o] =
                face.gFace[k] - outward(face, o) / length * weight[k] * (2.0 * tauG + h) * face.q / alpha;
            face.T += face.gFace[o];
        }
    }
    if (buoyancyOn) {
        face.Fx = face.Fy = 0.0;
        face.Fz = buoyancyCoeff * face.T;
    }
    recoverHeat(face);
}

void PlainSolver3D::treatBoundaryFaceFlow(Face3D& face) const {
    const Cell3D& c = m_cells[static_cast<std::size_t>(face.c0)];
    if (face.flowKind == 2) {
        face.u = c.u;
        face.v = c.v;
    }
    for (int k = 0; k < Q; ++k) {
        if (!(outward(face, k) >= 0.0))
            continue;
        const int o = opposite[k];
        face.fFace[k] = fBar(face, c, k);
        if (k == 0)
            continue;
        if (face.flowKind == 2)
            face.fFace[o] = c.fBarPlus[o];
        else
            face.fFace[o] = face.fFace[k] - 2.0 * face.rho * weight[k] *
                                                (xix[k] * face.u + xiy[k] * face.v + xiz[k] * face.w) / RT;
    }
    recoverFlow(face);
}

void PlainSolver3D::updateCell(Cell3D& c) const {
    if (flowOn) {
        c.uPrev = c.u;
        c.vPrev = c.v;
        c.wPrev = c.w;
        double rho = 0.0, mx = 0.0, my = 0.0, mz = 0.0;
        for (int k = 0; k < Q; ++k) {
            double flux = 0.0;
            for (int j = 0; j < c.faceCount; ++j) {
                const Face3D& face = m_faces[static_cast<std::size_t>(c.faces[j])];
                flux += (xix[k] * c.Nx[j] + xiy[k] * c.Ny[j] + xiz[k] * c.Nz[j]) * face.fFace[k] * face.area;
            }
            c.fTilde[k] = c.fTildePlus[k] - dt * flux / c.volume;
            rho += c.fTilde[k];
            mx += xix[k] * c.fTilde[k];
            my += xiy[k] * c.fTilde[k];
            mz += xiz[k] * c.fTilde[k];
        }
        c.rho = rho;
        c.u = mx / rho + dt / 2.0 * c.Fx;
        c.v = my / rho + dt / 2.0 * c.Fy;
        c.w = mz / rho + dt / 2.0 * c.Fz;
    }
    if (heatOn) {
        c.TPrev = c.T;
        double total = 0.0;
        for (int k = 0; k < Q; ++k) {
            double flux = 0.0;
            for (int j = 0; j < c.faceCount; ++j) {
                const Face3D& face = m_faces[static_cast<std::size_t>(c.faces[j])];
                flux += (xix[k] * c.Nx[j] + xiy[k] * c.Ny[j] + xiz[k] * c.Nz[j]) * face.gFace[k] * face.area;
            }
            c.gTilde[k] = c.gTildePlus[k] - dt * flux / c.volume;
            total += c.gTilde[k];
        }
        c.H = enthalpyForm ? total : c.H;
        c.T = enthalpyForm ? temperatureOf(total) : total;
        c.Fx = c.Fy = 0.0;
        c.Fz = buoyancyOn ? buoyancyCoeff * c.T : 0.0;
    }
}

void PlainSolver3D::step() {
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
    for (std::ptrdiff_t i = interior; i < faces; ++i) {
        Face3D& face = m_faces[static_cast<std::size_t>(i)];
        if (heatOn)
            treatBoundaryFaceHeat(face);
        if (flowOn)
            treatBoundaryFaceFlow(face);
    }
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < cells; ++i)
        updateCell(m_cells[static_cast<std::size_t>(i)]);
}

} // namespace fluvane::plain
