// What the tour types and picks in each sample case, as the case's README says.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

// The indices of the lists are part of what a case means.
enum class Flow { forced, natural, none };
enum class Heat { none, considered };
enum class Phase { none, considered, lftf };
enum class Time { steady, transient };
enum class FlowCondition { translation, rotation, outflow };
enum class ThermalCondition { adiabatic, constantT, constantFlux };

/// A page of the boundary wizard. Zones that no page names are walls at rest that let no heat through.
struct TourPage {
    QString zone;
    QStringList velocity; ///< ux, uy (uz); empty: at rest
    FlowCondition flow = FlowCondition::translation;
    ThermalCondition thermal = ThermalCondition::adiabatic;
    QString T;
};

/// What is typed into the window behind the button "Phase Change"; nothing without phase change.
struct TourPhaseChange {
    QString solidus;
    QString liquidus;
    QString stefan;
    QString liquidFraction;
};

/// Empty texts leave a field as it stands.
struct TourCase {
    QString name;
    bool is3D = false;
    QString velocityFile;
    QString meshFile;
    QString CFL;
    Flow flow = Flow::forced;
    Heat heat = Heat::none;
    Phase phase = Phase::none;
    Time time = Time::steady;
    QString L;
    QString ReOrRa;
    QString Pr; ///< the diffusivity where nothing flows
    TourPhaseChange phaseChange;
    std::vector<TourPage> pages;
    QString steps;    ///< 0: until it has converged
    QString terminal; ///< steps between two reports
};

/// The lid-driven cavity first.
const std::vector<TourCase>& tourCases();
