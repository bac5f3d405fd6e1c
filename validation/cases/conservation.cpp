// What the scheme keeps to rounding: mass, momentum, energy, symmetry, rest.
#include "case.h"
#include "dialogs/case_settings.h"
#include "plane_fields.h"
#include "plane_run.h"
#include "solver2d/time_step.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

void steps(int count) {
    for (int i = 0; i < count; ++i)
        step2D();
}

Table emptyTable() {
    return {
        "Relative to the quantity itself, except where said.", {"What is kept", "Steps", "deviation"}, {}};
}

void add(Result& result, const QString& what, int count, double deviation, double band) {
    result.tables.front().rows.push_back({what, QString::number(count), number(deviation, 2)});
    result.bands.push_back({what, deviation, 0.0, band});
}

PlaneSetUp cavity(double Re) {
    PlaneSetUp s;
    s.ReOrRa = Re;
    s.zones = {{}, {}, {}, support::movingWall(1.0, 0.0)};
    return s;
}

/// What all boundary faces carry out of momentum along x, by the last step's faces.
double momentumOut() {
    double total = 0.0;
    for (std::int32_t i = mesh.interiorFaceCount; i < mesh.totalFaceCount(); ++i) {
        const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        for (std::size_t k = 0; k < static_cast<std::size_t>(velocitySet.velocityCount); ++k) {
            const Vec2 xi = velocitySet.xi2D[k];
            total += xi.x * (xi.x * face.S0x + xi.y * face.S0y) * face.fFace[k];
        }
    }
    return total;
}

double momentum() {
    return integral([](const CellRecord& c) { return c.rho * c.u; });
}

void closedCavity(const Context& context, Result& result, const PlaneMesh& plane, const QString& name) {
    constexpr int count = 2000;
    prepare(context, name, plane, cavity(100.0));
    const double mass = totalMass();
    steps(count);
    add(result, "Mass of a closed cavity, " + plane.words, count, std::abs(totalMass() / mass - 1.0), 1e-12);
    const double before = momentum();
    step2D();
    const double gained = momentum() - before;
    // The pressure on the walls is what the rounding is relative to.
    const double scale = caseSettings.dt * caseSettings.RT;
    add(result, "Momentum gained in a step less the walls' forces, over pressure times side, " + plane.words,
        1, std::abs(gained + caseSettings.dt * momentumOut()) / scale, 1e-10);
}

void heatedSlab(const Context& context, Result& result) {
    constexpr int count = 2000;
    PlaneSetUp s;
    s.flowKind = 2;
    s.heat = true;
    s.scaleKind = 1;
    s.scale = 0.02;
    s.Pr = 0.003;
    s.zones = {{}, support::wallWithFlux(0.02), {}, {}};
    prepare(context, "energy", triangles(16), s);
    steps(count);
    const double heat = integral([](const CellRecord& c) { return c.T; });
    add(result, "Heat in a box with one flux wall, over q times time, triangles", count,
        std::abs(heat / (0.02 * count * caseSettings.dt) - 1.0), 1e-11);
}

void heatBalance(const Context& context, Result& result) {
    constexpr int count = 1000;
    PlaneSetUp s;
    s.flowKind = 1;
    s.heat = true;
    s.Pr = 0.71;
    s.ReOrRa = 1e4;
    s.zones = {support::wallAt(0.5), support::wallAt(-0.5), {}, {}};
    prepare(context, "balance", squares(32), s);
    steps(count);
    const auto heat = [] { return integral([](const CellRecord& c) { return c.T; }); };
    const double before = heat();
    step2D();
    double out = 0.0;
    for (int zone = 0; zone < 4; ++zone)
        out += heatOutThrough(zone);
    const double through = caseSettings.dt * std::abs(heatOutThrough(0));
    add(result, "Heat gained in a step less what crosses the walls, over the hot wall's, natural convection",
        1, std::abs(heat() - before + caseSettings.dt * out) / through, 1e-9);
}

/// Largest difference of two fields of which one is turned or mirrored.
struct Asymmetry {
    double difference = 0.0;
    void add(double ours, double partners) { difference = std::max(difference, std::abs(ours - partners)); }
};

double afterHalfATurn(const Context& context, int n) {
    PlaneSetUp s;
    s.flowKind = 1;
    s.heat = true;
    s.Pr = 0.71;
    s.ReOrRa = 1e4;
    s.zones = {support::wallAt(0.5), support::wallAt(-0.5), {}, {}};
    prepare(context, "turn", squares(n), s);
    steps(50 * n);
    Asymmetry found;
    for (std::size_t i = 0; i < mesh.cells2D.size(); ++i) {
        const CellRecord &a = mesh.cells2D[i], &b = mesh.cells2D[mesh.cells2D.size() - 1 - i];
        found.add(a.u / caseSettings.U0, -b.u / caseSettings.U0);
        found.add(a.v / caseSettings.U0, -b.v / caseSettings.U0);
        found.add(a.T, -b.T);
    }
    return found.difference;
}

double afterMirroring(const Context& context, int n) {
    PlaneSetUp s = cavity(100.0);
    s.zones = {support::movingWall(0.0, 1.0), support::movingWall(0.0, 1.0), {}, {}};
    prepare(context, "mirror", squares(n), s);
    steps(50 * n);
    Asymmetry found;
    const auto row = static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < mesh.cells2D.size(); ++i) {
        const CellRecord &a = mesh.cells2D[i], &b = mesh.cells2D[i / row * row + (row - 1 - i % row)];
        found.add(a.u / caseSettings.U0, -b.u / caseSettings.U0);
        found.add(a.v / caseSettings.U0, b.v / caseSettings.U0);
    }
    return found.difference;
}

void symmetry(const Context& context, Result& result) {
    Table table{"Largest difference from the turned or mirrored field at one time, in U0 and dT.",
                {"Mesh", "natural convection, half a turn", "order",
                 "cavity with both sides moving up, mirrored", "order"},
                {}};
    double turnedBefore = 0.0, mirroredBefore = 0.0;
    for (const int n : context.quick() ? std::vector{16, 32} : std::vector{16, 32, 64, 128}) {
        const double turned = afterHalfATurn(context, n), mirrored = afterMirroring(context, n);
        const bool first = n == 16;
        table.rows.push_back({squares(n).words, number(turned, 3),
                              first ? QString() : number(observedOrder(turnedBefore, turned, 2.0), 3),
                              number(mirrored, 3),
                              first ? QString() : number(observedOrder(mirroredBefore, mirrored, 2.0), 3)});
        turnedBefore = turned;
        mirroredBefore = mirrored;
    }
    result.tables.push_back(table);
    result.bands.push_back({"asymmetry after half a turn on the finest mesh", turnedBefore, 0.0, 0.01});
    result.bands.push_back({"asymmetry after mirroring on the finest mesh", mirroredBefore, 0.0, 0.05});
    result.remarks
        << "Symmetry is not kept to rounding. On squares many velocities run exactly along a face; their "
           "upwind "
           "side is then always the same of the face's two cells, which favours one direction by a "
           "discretisation error. It falls with the mesh.";
}

void rest(const Context& context, Result& result) {
    constexpr int count = 1000;
    PlaneSetUp s = cavity(100.0);
    s.zones = {{}, {}, {}, {}};
    prepare(context, "rest", triangles(16), s);
    steps(count);
    double fastest = 0.0;
    for (const CellRecord& c : mesh.cells2D)
        fastest = std::max(fastest, std::hypot(c.u, c.v) / caseSettings.U0);
    add(result, "Fluid at rest stays at rest, in U0, triangles", count, fastest, 1e-11);
}

Result conservation(const Context& context) {
    Result result;
    result.sources
        << "What a conservative scheme must give: nothing is lost or gained but through the walls.";
    result.setUp << "\"CFL number(0~1.0)\" 0.4, \"Ma\" 0.1; cavities at Re 100, natural convection at Ra "
                    "1e4, the flux wall with "
                    "q 0.02 and diffusivity 0.003.";
    result.tables.push_back(emptyTable());
    closedCavity(context, result, squares(32), "cavity_squares");
    heatedSlab(context, result);
    heatBalance(context, result);
    symmetry(context, result);
    rest(context, result);
    result.remarks << "With buoyancy the mass of a closed box is not kept to rounding: the force on a wall's "
                      "face enters what "
                      "it sends back. The tables of natural convection tell by how much.";
    return result;
}

const Registered conservationCase({90, "conservation", "Conservation and symmetry", conservation, 10});

} // namespace

} // namespace fluvane::validation
