// The sample cases that the tour knows.
#include "tour_cases.h"

namespace {

constexpr char planeVelocities[] = "Velocity_file/D2Q9.2Dv";

TourPage movingWall(const QString& zone, const QStringList& velocity) {
    TourPage page;
    page.zone = zone;
    page.velocity = velocity;
    return page;
}

TourPage warmWall(const QString& zone, const QString& T) {
    TourPage page;
    page.zone = zone;
    page.thermal = ThermalCondition::constantT;
    page.T = T;
    return page;
}

TourPage outlet(const QString& zone) {
    TourPage page;
    page.zone = zone;
    page.flow = FlowCondition::outflow;
    return page;
}

TourCase cavity() {
    TourCase c;
    c.name = "cavity";
    c.velocityFile = planeVelocities;
    c.meshFile = "cavity/cavity_32.msh";
    c.L = "1";
    c.ReOrRa = "100";
    c.pages = {movingWall("lid", {"1", "0"})};
    c.steps = "0";
    c.terminal = "1000";
    return c;
}

TourCase annulus() {
    TourCase c;
    c.name = "annulus";
    c.velocityFile = planeVelocities;
    c.meshFile = "annulus/annulus_16.msh";
    c.flow = Flow::none;
    c.heat = Heat::considered;
    c.L = "1";
    c.Pr = "0.003";
    c.pages = {warmWall("inner", "2"), warmWall("outer", "1")};
    c.steps = "0";
    c.terminal = "2000";
    return c;
}

TourCase heatedCavity() {
    TourCase c;
    c.name = "heated-cavity";
    c.velocityFile = planeVelocities;
    c.meshFile = "heated-cavity/heated_cavity_32.msh";
    c.flow = Flow::natural;
    c.heat = Heat::considered;
    c.L = "1";
    c.ReOrRa = "10000";
    c.Pr = "0.71";
    c.pages = {warmWall("left", "0.5"), warmWall("right", "-0.5")};
    c.steps = "0";
    c.terminal = "2000";
    return c;
}

TourCase channel() {
    TourCase c;
    c.name = "channel";
    c.velocityFile = planeVelocities;
    c.meshFile = "channel/channel_16.msh";
    c.L = "1";
    c.ReOrRa = "20";
    c.pages = {movingWall("inlet", {"1", "0"}), outlet("outlet")};
    c.steps = "0";
    c.terminal = "1000";
    return c;
}

TourCase meltingCavity() {
    TourCase c;
    c.name = "melting-cavity";
    c.velocityFile = planeVelocities;
    c.meshFile = "melting-cavity/melting_cavity_24.msh";
    c.flow = Flow::natural;
    c.heat = Heat::considered;
    c.phase = Phase::considered;
    c.time = Time::transient;
    c.L = "1";
    c.ReOrRa = "25000";
    c.Pr = "0.02";
    c.phaseChange = {"0", "0", "0.1", "0"};
    c.pages = {warmWall("left", "1")};
    c.steps = "14800";
    c.terminal = "1480";
    return c;
}

TourCase cavity3D() {
    TourCase c;
    c.name = "cavity-3d";
    c.is3D = true;
    c.velocityFile = "Velocity_file/D3Q19.3Dv";
    c.meshFile = "cavity-3d/cavity_3d_10.msh";
    c.CFL = "0.25";
    c.L = "10";
    c.ReOrRa = "100";
    c.pages = {movingWall("lid", {"1", "0", "0"})};
    c.steps = "0";
    c.terminal = "1000";
    return c;
}

} // namespace

const std::vector<TourCase>& tourCases() {
    static const std::vector<TourCase> cases{cavity(),  annulus(),       heatedCavity(),
                                             channel(), meltingCavity(), cavity3D()};
    return cases;
}
