// Turns the physics dialog's inputs into solver parameters and a uniform initial state.
#pragma once

namespace fluvane {

/// Derives the case parameters and puts every cell into the uniform state at rest with T = 0, then computes
/// `dx` and `dt`. To be called after the mesh, the velocity set and the lattice properties are there.
///
/// @param L            characteristic length
/// @param Ma           Mach number
/// @param Pr           Prandtl number; the thermal diffusivity itself in conduction-only cases
/// @param ReOrRa       Reynolds number (forced flow) or Rayleigh number (natural convection)
/// @param dTvalue      thermal scale: temperature difference, wall heat flux or source strength
/// @param flowKind     0 forced, 1 natural, 2 conduction only; any other value changes no coefficient
/// @param heatChoice   0: no heat transfer, and the thermal scale keeps its previous value
/// @param scaleKind    0 temperature difference, 1 heat flux, 2 heat source
/// @param phaseChoice  0 temperature form, 1 enthalpy form, 2 enthalpy form with LFTF
/// @param timeChoice   0 steady, 1 transient
///
/// No number is checked: Re = 0 gives an infinite viscosity. Records made for another velocity count are
/// left alone, with a problem line.
void initialiseFields(double L, double Ma, double Pr, double ReOrRa, double dTvalue, int flowKind,
                      int heatChoice, int scaleKind, int phaseChoice, int timeChoice);

/// Puts every 2D cell into the uniform initial state with the parameters as they are. Forces, face
/// velocities and previous values stay as they were; H is set in the enthalpy form only.
void resetFields2D();

/// The same for the 3D cells, in the temperature form whatever the thermal mode.
void resetFields3D();

} // namespace fluvane
