// Melting cases: their set-up, the exact fronts of one-dimensional ones, and how far a run's front is off.
#pragma once

#include <utility>
#include <vector>

namespace fluvane::support {

/// The two variants of the enthalpy form, as the phase-change list of the physics window numbers them.
constexpr int phaseConsidered = 1;
constexpr int phaseLftf = 2;

/// What the physics and the phase-change window ask for.
struct MeltingPhysics {
    double L = 1.0;
    double Ma = 0.1;
    double PrOrAlpha = 1.0; ///< the diffusivity in conduction
    double Ra = 0.0;
    int flowKind = 2; ///< 1 natural, 2 conduction only
    int variant = phaseConsidered;
    double Ste = 1.0;
    double meltingPoint = 0.0; ///< typed as solidus and as liquidus
};

/// Confirms the physics window, the phase-change window and the physics window again: the latent heat takes
/// the thermal scale of the first, the initial enthalpy that of the second. Boundary conditions come after.
void confirmMelting(const MeltingPhysics& physics);

/// lambda of the front x = 2 lambda sqrt(alpha t) from a wall, when all the solid is at the melting point.
double onePhaseLambda(double Ste);

/// The same for freezing a liquid `warmer` above the melting point from a wall `colder` below it.
double twoPhaseLambda(double colder, double warmer, double latentHeat);

/// By area.
double meanLiquidFraction();

/// alpha t / L^2 after this many steps.
double fourierNumber(int steps);

/// Steps from `done` steps on up to a Fourier number; returns the new number of steps.
int runTo(double Fo, int done);

/// The share of a slab behind the front at one moment.
struct FrontMoment {
    double Fo = 0.0;
    int steps = 0;
    double measured = 0.0;
    double exact = 0.0;
};

/// Eleven moments between two shares, from a slab that has not been stepped yet: a single one shows where in
/// its cell the front happens to be.
std::vector<FrontMoment> followFront(double lambda, std::pair<double, double> shares, bool freezing);

/// The largest relative error of the share.
double largestFrontError(const std::vector<FrontMoment>& moments);

} // namespace fluvane::support
