// The 3D scheme written the plainest way, straight from the formulas: the yardstick for results and speed.
#pragma once

#include "plain_reference/distribution.h"

#include <vector>

namespace fluvane::plain {

struct Cell3D {
    double xc, yc, zc, volume;
    int faceCount, neighbourCount;
    int faces[6];
    double Nx[6], Ny[6], Nz[6];
    double rho, u, v, w, uPrev, vPrev, wPrev, T, TPrev, H, Fx, Fy, Fz;
    Distribution fTilde, fBarPlus, fTildePlus, gTilde, gBarPlus, gTildePlus;
    Distribution dfdx, dfdy, dfdz, dgdx, dgdy, dgdz;
    int neighbours[24];
    double wx[24], wy[24], wz[24];
};

struct Face3D {
    double xf, yf, zf, area;
    double rho, u, v, w, T, Fx, Fy, Fz, q;
    Distribution fFace, gFace;
    int thermalKind, flowKind;
    int c0, c1;
    double nx, ny, nz;
};

/// Takes over mesh, state, velocity set and settings as they stand in the process-wide objects and advances
/// a copy of its own, as the 2D one does.
class PlainSolver3D {
public:
    PlainSolver3D();

    /// One time step: the five loops, each shared out over the OpenMP threads.
    void step();

    const std::vector<Cell3D>& cells() const { return m_cells; }
    const std::vector<Face3D>& faces() const { return m_faces; }
    int velocityCount() const { return Q; }

    void collideCell(Cell3D& cell) const;
    void computeCellGradients(Cell3D& cell) const;
    void reconstructInteriorFace(Face3D& face) const;
    void treatBoundaryFaceHeat(Face3D& face) const;
    void treatBoundaryFaceFlow(Face3D& face) const;
    void updateCell(Cell3D& cell) const;

private:
    double feq(int k, double phi, double u, double v, double w) const;
    double forcing(int k, double rho, double u, double v, double w, double Fx, double Fy, double Fz) const;
    double temperatureOf(double H) const;
    double fBar(const Face3D& face, const Cell3D& from, int k) const;
    double gBar(const Face3D& face, const Cell3D& from, int k) const;
    double outward(const Face3D& face, int k) const;
    void recoverHeat(Face3D& face) const;
    void recoverFlow(Face3D& face) const;

    int Q = 0;
    double xix[30], xiy[30], xiz[30], weight[30];
    int opposite[30];
    bool flowOn, heatOn, enthalpyForm, buoyancyOn;
    double RT, dt, tauF, tauG, alpha, buoyancyCoeff;
    double Tm, dTm, latentHeat, cpSolid, cpLiquid, Hsolidus, Hliquidus;
    int m_interiorFaceCount = 0;
    std::vector<Cell3D> m_cells;
    std::vector<Face3D> m_faces;
};

} // namespace fluvane::plain
