// The process-wide record through which the dialogs hand a case to the solver.
#pragma once

#include <cstdint>

namespace fluvane {

/// Everything the user states about a case and what follows from it. One instance, `caseSettings`.
/// The dialogs and the set-up functions write it on the GUI thread; drivers, kernels and writers read it.
/// Lengths are in the mesh's unit; velocities, times and temperatures are in lattice units.
struct CaseSettings {
    // Readiness and mode. No gate is ever cleared again once it is set.
    bool is3D = false;
    bool meshLoaded = false;
    bool latticeInitialised = false;
    bool boundaryInitialised = false;
    bool steadyState = false;

    // Dimensionless numbers and scales.
    double L = 1.0;  ///< characteristic length
    double Ma = 0.0; ///< Mach number
    double Pr = 0.0; ///< Prandtl number (in conduction-only cases: what was typed as the diffusivity)
    double Re = 0.0; ///< Reynolds number, forced flow
    double Ra = 0.0; ///< Rayleigh number, natural convection
    double dT = 1.0; ///< thermal scale: temperature difference, wall heat flux or source strength
    std::int32_t thermalScaleKind = 0; ///< 0 temperature difference, 1 heat flux, 2 heat source
    double heatSource = 0.0;           ///< volumetric source, non-zero only with thermalScaleKind 2
    std::uint8_t flowOn = 0;           ///< 1: the momentum equation is solved (only ever 0 or 1)
    bool heatOn = false;               ///< the energy equation is solved
    bool buoyancyOn = false;           ///< natural convection: Boussinesq force on
    std::int32_t thermalMode = 0;      ///< 0 temperature form, 1 enthalpy form (phase change)
    bool lftfOn = false;               ///< the enthalpy form uses the LFTF variant

    // Derived by the field initialisation.
    double U0 = 1.0;            ///< reference velocity, soundSpeed * Ma
    double niu = 0.0;           ///< kinematic viscosity
    double alpha = 0.0;         ///< thermal diffusivity
    double tauF = 0.0;          ///< relaxation time of the flow distribution, niu / RT
    double tauG = 0.0;          ///< relaxation time of the thermal distribution, alpha / RT
    double buoyancyCoeff = 0.0; ///< body force per unit temperature, along +y (2D) or +z (3D)
    double dx = 0.0;            ///< smallest face length (2D) or face area (3D)
    double dt = 0.0;            ///< time step

    // Lattice.
    double RT = 0.0;         ///< squared lattice sound speed
    double soundSpeed = 0.0; ///< sqrt(RT)
    double CFL = 0.0;

    // Phase change.
    double Ts = 0.0;  ///< solidus temperature as typed
    double Tl = 0.0;  ///< liquidus temperature as typed
    double Ste = 1.0; ///< Stefan number
    double Fl0 = 0.0; ///< initial liquid fraction as typed; no formula reads it
    double Tm = 0.0;  ///< melting temperature of the enthalpy relation
    double dTm = 0.0; ///< half width of the mushy range
    double latentHeat = 0.0;
    double cpLiquid = 1.0;
    double cpSolid = 1.0;
    double Hsolidus = 0.0;  ///< enthalpy at Tm - dTm
    double Hliquidus = 0.0; ///< enthalpy at Tm + dTm
};

extern CaseSettings caseSettings;

/// What the boundary wizard gathers for one boundary zone.
struct BoundaryCondition {
    std::int32_t firstFace = 0; ///< first face of the zone, 0-based
    std::int32_t lastFace = 0;  ///< one past the zone's last face
    double ux = 0.0;            ///< wall velocity in units of U0
    double uy = 0.0;
    double uz = 0.0;              ///< 3D only
    std::int32_t flowKind = 0;    ///< 0 translation, 1 rotation, 2 outflow
    std::int32_t thermalKind = 0; ///< 0 adiabatic, 1 constant temperature, 2 constant flux
    double T = 0.0;               ///< wall temperature (kind 1) or heat flux (kind 2)
    double fl = 0.0;              ///< wall liquid fraction, 2D only
};

/// Derives the constants of the enthalpy relation from the Stefan number, the solidus and liquidus
/// temperatures and the initial liquid fraction, with the thermal scale, L and alpha as they now stand.
///
/// Deliberate: the mushy range is always two times 0.0001 wide and begins at (Ts + Tl) / 2, whatever Ts and
/// Tl are. With a heat source as thermal scale the latent heat keeps its previous value.
void setPhaseChange(double Ste, double Ts, double Tl, double Fl);

} // namespace fluvane
