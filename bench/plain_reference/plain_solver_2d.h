// The 2D scheme written the plainest way, straight from the formulas: the yardstick for results and speed.
#pragma once

#include "plain_reference/distribution.h"

#include <vector>

namespace fluvane::plain {

struct Cell {
    double xc, yc, area;
    int faceCount, neighbourCount;
    int faces[4];
    double Sx[4], Sy[4];
    double rho, u, v, uPrev, vPrev, T, TPrev, H, Fx, Fy;
    Distribution fTilde, fBarPlus, fTildePlus, gTilde, gBarPlus, gTildePlus;
    Distribution dfdx, dfdy, dgdx, dgdy;
    int neighbours[20];
    double wx[20], wy[20];
};

struct Face {
    double xf, yf;
    double rho, u, v, T, H, Fx, Fy, q;
    Distribution fFace, gFace;
    int thermalKind, flowKind;
    int c0, c1;
    double S0x, S0y;
};

/// Takes over mesh, state, velocity set and settings as they stand in the process-wide objects and advances
/// a copy of its own. Records are plain structs that own their arrays; kernels loop over velocities and
/// evaluate each formula where it is needed.
class PlainSolver2D {
public:
    PlainSolver2D();

    /// One time step: the six loops, each shared out over the OpenMP threads.
    void step();

    const std::vector<Cell>& cells() const { return m_cells; }
    const std::vector<Face>& faces() const { return m_faces; }
    int velocityCount() const { return Q; }

    void collideCell(Cell& cell) const;
    void computeCellGradients(Cell& cell) const;
    void reconstructInteriorFace(Face& face) const;
    void treatBoundaryFace(Face& face) const;
    void recoverFaceDistributions(Face& face) const;
    void updateCell(Cell& cell) const;

private:
    double feq(int k, double phi, double u, double v) const;
    double geqH(int k, double H, double T, double u, double v) const;
    double forcing(int k, double rho, double u, double v, double Fx, double Fy) const;
    double source(int k, double u, double v) const;
    double enthalpyOf(double T) const;
    double temperatureOf(double H) const;
    double liquidFraction(double H) const;
    void boundaryHeat(Face& face) const;
    void boundaryFlow(Face& face) const;

    int Q = 0;
    double xix[30], xiy[30], w[30];
    int opposite[30];
    bool flowOn, heatOn, enthalpyForm, buoyancyOn, lftfOn;
    double RT, dt, tauF, tauG, alpha, buoyancyCoeff, heatSource;
    double Tm, dTm, latentHeat, cpSolid, cpLiquid, Hsolidus, Hliquidus;
    int m_interiorFaceCount = 0;
    std::vector<Cell> m_cells;
    std::vector<Face> m_faces;
};

} // namespace fluvane::plain
