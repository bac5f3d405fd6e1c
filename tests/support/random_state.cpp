// Fills records with reproducible noise.
#include "support/random_state.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"

#include <random>

namespace fluvane::support {

void usePlainSettings(double dt) {
    CaseSettings& s = caseSettings;
    s.RT = 1.0 / 3.0;
    s.soundSpeed = 0.57735026918962573;
    s.dt = dt;
    s.tauF = 2.3 * dt;
    s.tauG = 1.7 * dt;
    s.niu = s.tauF * s.RT;
    s.alpha = s.tauG * s.RT;
    s.buoyancyCoeff = 0.02;
    s.U0 = 0.1;
}

namespace {

class Noise {
public:
    explicit Noise(unsigned seed) : m_generator(seed) {}
    double operator()() { return m_uniform(m_generator); }

private:
    std::mt19937_64 m_generator;
    std::uniform_real_distribution<double> m_uniform{-1.0, 1.0};
};

template <class Cell>
void fillCell(Cell& c, Noise& noise) {
    c.rho = 1.0 + 0.02 * noise();
    c.u = 0.05 * noise();
    c.v = 0.05 * noise();
    c.T = 0.5 + 0.4 * noise();
    c.H = 0.7 + 0.6 * noise();
    c.Fx = 0.01 * noise();
    c.Fy = 0.01 * noise();
    for (std::size_t k = 0; k < static_cast<std::size_t>(mesh.recordVelocityCount); ++k) {
        const double w = velocitySet.weights[k];
        c.fTilde[k] = w * (c.rho + 0.05 * noise());
        c.gTilde[k] = w * (c.T + 0.05 * noise());
    }
}

template <class Face>
void fillFace(Face& f, Noise& noise) {
    f.rho = 1.0;
    f.u = 0.05 * noise();
    f.v = 0.05 * noise();
    f.T = 0.5 + 0.4 * noise();
    f.Fx = 0.01 * noise();
    f.Fy = 0.01 * noise();
    f.q = 0.1 * noise();
}

} // namespace

void fillRandomState(unsigned seed) {
    Noise noise(seed);
    for (CellRecord& c : mesh.cells2D)
        fillCell(c, noise);
    for (FaceRecord& f : mesh.faces2D) {
        fillFace(f, noise);
        f.H = 0.3 + 0.3 * noise();
    }
    for (CellRecord3D& c : mesh.cells3D) {
        fillCell(c, noise);
        c.w = 0.05 * noise();
        c.Fz = 0.01 * noise();
    }
    for (FaceRecord3D& f : mesh.faces3D) {
        fillFace(f, noise);
        f.w = 0.05 * noise();
        f.Fz = 0.01 * noise();
    }
}

} // namespace fluvane::support
