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

void fillRandomState(unsigned seed) {
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    const auto Q = static_cast<std::size_t>(mesh.recordVelocityCount);
    for (CellRecord& c : mesh.cells2D) {
        c.rho = 1.0 + 0.02 * noise(generator);
        c.u = 0.05 * noise(generator);
        c.v = 0.05 * noise(generator);
        c.T = 0.5 + 0.4 * noise(generator);
        c.H = 0.7 + 0.6 * noise(generator);
        c.Fx = 0.01 * noise(generator);
        c.Fy = 0.01 * noise(generator);
        for (std::size_t k = 0; k < Q; ++k) {
            const double w = velocitySet.weights[k];
            c.fTilde[k] = w * (c.rho + 0.05 * noise(generator));
            c.gTilde[k] = w * (c.T + 0.05 * noise(generator));
        }
    }
    for (FaceRecord& f : mesh.faces2D) {
        f.rho = 1.0;
        f.u = 0.05 * noise(generator);
        f.v = 0.05 * noise(generator);
        f.T = 0.5 + 0.4 * noise(generator);
        f.H = 0.3 + 0.3 * noise(generator);
        f.Fx = 0.01 * noise(generator);
        f.Fy = 0.01 * noise(generator);
        f.q = 0.1 * noise(generator);
    }
}

} // namespace fluvane::support
