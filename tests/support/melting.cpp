// Sets melting cases up and compares fronts with the exact ones.
#include "support/melting.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "setup/initial_fields.h"
#include "solver2d/enthalpy.h"
#include "solver2d/time_step.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace fluvane::support {

namespace {

/// The root of a function that grows from a negative to a positive value.
double rootOf(const std::function<double(double)>& f, double low, double high) {
    for (int i = 0; i < 100; ++i) {
        const double middle = 0.5 * (low + high);
        (f(middle) < 0.0 ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

} // namespace

void confirmMelting(const MeltingPhysics& p) {
    const auto physics = [&] {
        initialiseFields(p.L, p.Ma, p.PrOrAlpha, p.Ra, 1.0, p.flowKind, 1, 0, p.variant, 1);
    };
    physics();
    setPhaseChange(p.Ste, p.meltingPoint, p.meltingPoint, 0.0);
    physics();
}

double onePhaseLambda(double Ste) {
    const auto balance = [Ste](double l) {
        return l * std::exp(l * l) * std::erf(l) - Ste / std::sqrt(std::numbers::pi);
    };
    return rootOf(balance, 1e-6, 5.0);
}

double twoPhaseLambda(double colder, double warmer, double latentHeat) {
    const auto balance = [=](double l) {
        return latentHeat * l * std::sqrt(std::numbers::pi) * std::exp(l * l) - colder / std::erf(l) +
               warmer / std::erfc(l);
    };
    return rootOf(balance, 1e-6, 5.0);
}

double meanLiquidFraction() {
    double liquid = 0.0, area = 0.0;
    for (const CellRecord& c : mesh.cells2D) {
        liquid += c.area * liquidFraction(c.H);
        area += c.area;
    }
    return liquid / area;
}

double fourierNumber(int steps) {
    const CaseSettings& s = caseSettings;
    return steps * s.dt * s.alpha / (s.L * s.L);
}

int runTo(double Fo, int done) {
    const int steps = static_cast<int>(std::lround(Fo / fourierNumber(1)));
    for (int n = done; n < steps; ++n)
        step2D();
    return steps;
}

std::vector<FrontMoment> followFront(double lambda, std::pair<double, double> shares, bool freezing) {
    std::vector<FrontMoment> moments;
    int steps = 0;
    for (int i = 0; i <= 10; ++i) {
        const double share = shares.first + (shares.second - shares.first) * i / 10;
        steps = runTo(std::pow(0.5 * share / lambda, 2), steps);
        const double Fo = fourierNumber(steps);
        moments.push_back({Fo, steps, freezing ? 1.0 - meanLiquidFraction() : meanLiquidFraction(),
                           2.0 * lambda * std::sqrt(Fo)});
    }
    return moments;
}

double largestFrontError(const std::vector<FrontMoment>& moments) {
    double largest = 0.0;
    for (const FrontMoment& m : moments) {
        const double error = std::abs(m.measured / m.exact - 1.0);
        largest = std::isfinite(error) ? std::max(largest, error) : INFINITY;
    }
    return largest;
}

} // namespace fluvane::support
