// Captures the fields and formats the result files.
#include "output/result_file.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/file_text.h"
#include "output/whole_file.h"
#include "solver2d/enthalpy_relation.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <string_view>

namespace fluvane {

namespace {

constexpr std::string_view lineEnd = "\r\n";

void appendLine(FileText& text, const char* line) {
    text += line;
    text += lineEnd;
}

void appendFlag(FileText& text, const char* key, bool on) {
    text += key;
    text += on ? '1' : '0';
    text += lineEnd;
}

void appendParameter(FileText& text, const char* key, double value) {
    text += key;
    appendNumber(text, value);
}

void appendNumberLine(FileText& text, double value) {
    text.appendNumber(value, lineEnd);
}

void appendTitle(FileText& text) {
    appendLine(text, "TITLE = \"UNSTRUCTED TEST\"");
}

void appendZone(FileText& text, std::size_t cellCount, const char* type) {
    text += "ZONE N=";
    appendInteger(text, mesh.pointCount);
    text += ", E=";
    appendInteger(text, static_cast<std::int64_t>(cellCount));
    text += ", ZONETYPE = ";
    appendLine(text, type);
    appendLine(text, "DATAPACKING = BLOCK");
}

void appendHeader2D(FileText& text, const ResultSnapshot2D& s) {
    appendTitle(text);
    appendFlag(text, "Isflow=", s.flowOn);
    appendFlag(text, "Isheat=", s.heatOn);
    appendFlag(text, "Isnatural=", s.buoyancyOn);
    appendParameter(text, "Ra=", s.Ra);
    appendParameter(text, ",  Re=", s.Re);
    appendParameter(text, ",  Pr=", s.Pr);
    appendParameter(text, ",  dx=", s.dx);
    appendParameter(text, ",  CFL=", s.CFL);
    appendParameter(text, ",  dt=", s.dt);
    text += lineEnd;
    appendParameter(text, "niu=", s.niu);
    appendParameter(text, ", alpha=", s.alpha);
    text += lineEnd;
    appendParameter(text, "error=", s.error);
    text += lineEnd;
    appendLine(text, R"(VARIABLES = "X", "Y", "rho","u","v","T","H","fl")");
    appendZone(text, s.cells.size(), "FEQUADRILATERAL");
    // Deliberate: the range names seven cell-centred variables though the file has six; readers of these
    // files know the line as it stands.
    appendLine(text, "VARLOCATION = ([1-2]=NODAL, [3-9]=CELLCENTERED)");
}

/// The 1-based number of one corner and the blank after it.
void appendCorner(FileText& text, std::int32_t point) {
    text.appendInteger(std::int64_t{point} + 1, " ");
}

/// The temperature in units of the thermal scale. Deliberate: with an unknown scale kind nothing is written,
/// not even a line end, rather than a value in a made-up unit.
template <class Snapshot>
void appendScaledTemperature(FileText& text, double T, const Snapshot& s) {
    if (!s.heatOn)
        appendNumberLine(text, T);
    else if (s.thermalScaleKind == 0)
        appendNumberLine(text, T / s.dT);
    else if (s.thermalScaleKind == 1)
        appendNumberLine(text, s.alpha * T / s.dT / s.L);
    else if (s.thermalScaleKind == 2)
        appendNumberLine(text, s.alpha * T / s.dT / s.L / s.L);
}

void appendFields2D(FileText& text, const ResultSnapshot2D& s) {
    using Cell = ResultSnapshot2D::Cell;
    for (const Cell& cell : s.cells)
        appendNumberLine(text, cell.rho);
    for (const Cell& cell : s.cells)
        appendNumberLine(text, cell.u / s.U0);
    for (const Cell& cell : s.cells)
        appendNumberLine(text, cell.v / s.U0);
    for (const Cell& cell : s.cells)
        appendScaledTemperature(text, cell.T, s);
    const bool enthalpyForm = s.thermalMode == 1;
    for (const Cell& cell : s.cells)
        appendNumberLine(text, enthalpyForm ? cell.H : 0.0);
    EnthalpyRelation relation;
    relation.Hsolidus = s.Hsolidus;
    relation.Hliquidus = s.Hliquidus;
    for (const Cell& cell : s.cells)
        appendNumberLine(text, enthalpyForm ? relation.liquidFraction(cell.H) : 0.0);
}

/// Four 1-based point numbers a line, each followed by a blank. Deliberate: a triangle a b c is written
/// a b c a, the first corner repeated and not the last.
void appendConnectivity2D(FileText& text) {
    for (const CellRecord& cell : mesh.cells2D) {
        for (std::size_t j = 0; j < static_cast<std::size_t>(cell.nodeCount); ++j)
            appendCorner(text, cell.nodes[j]);
        if (cell.nodeCount < CellRecord::maxFaces)
            appendCorner(text, cell.nodes[0]);
        text += lineEnd;
    }
}

/// Deliberate: no parameters and no error line, unlike in 2D.
void appendHeader3D(FileText& text, const ResultSnapshot3D& s) {
    appendTitle(text);
    appendLine(text, R"(VARIABLES = "X", "Y","Z","rho","u","v","w","T")");
    appendZone(text, s.cells.size(), "FETETRAHEDRON");
    appendLine(text, "VARLOCATION = ([1-3]=NODAL, [4-8]=CELLCENTERED)");
}

/// Deliberate: the velocity as stored, not in units of U0 as in 2D.
void appendFields3D(FileText& text, const ResultSnapshot3D& s) {
    using Cell = ResultSnapshot3D::Cell;
    for (const auto field : {&Cell::rho, &Cell::u, &Cell::v, &Cell::w})
        for (const Cell& cell : s.cells)
            appendNumberLine(text, cell.*field);
    for (const Cell& cell : s.cells)
        appendScaledTemperature(text, cell.T, s);
}

/// As many 1-based point numbers a line as the cell has corners, each followed by a blank. Deliberate: also
/// for a cell that is no tetrahedron, whatever the zone type says.
void appendConnectivity3D(FileText& text) {
    for (const CellRecord3D& cell : mesh.cells3D) {
        for (std::size_t j = 0; j < static_cast<std::size_t>(cell.nodeCount); ++j)
            appendCorner(text, cell.nodes[j]);
        text += lineEnd;
    }
}

void appendNumberLines(FileText& text, const std::vector<double>& values) {
    for (const double value : values)
        appendNumberLine(text, value);
}

/// False when memory has no room for a copy of the cells: the snapshot stays empty, and the writers refuse
/// it.
template <class Cell>
bool makeRoom(std::vector<Cell>& cells, std::size_t count) {
    try {
        cells.reserve(count);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

ResultSnapshot2D captureResult2D() {
    const CaseSettings& c = caseSettings;
    ResultSnapshot2D s;
    if (!makeRoom(s.cells, mesh.cells2D.size()))
        return s;
    for (const CellRecord& cell : mesh.cells2D)
        s.cells.push_back({cell.rho, cell.u, cell.v, cell.T, cell.H});
    s.flowOn = c.flowOn != 0;
    s.heatOn = c.heatOn;
    s.buoyancyOn = c.buoyancyOn;
    s.thermalMode = c.thermalMode;
    s.thermalScaleKind = c.thermalScaleKind;
    s.Ra = c.Ra;
    s.Re = c.Re;
    s.Pr = c.Pr;
    s.dx = c.dx;
    s.CFL = c.CFL;
    s.dt = c.dt;
    s.niu = c.niu;
    s.alpha = c.alpha;
    s.U0 = c.U0;
    s.dT = c.dT;
    s.L = c.L;
    s.Hsolidus = c.Hsolidus;
    s.Hliquidus = c.Hliquidus;
    s.error = exactSolutionError();
    return s;
}

bool writeResult2D(const QString& path, const ResultSnapshot2D& snapshot) {
    if (snapshot.cells.size() != mesh.cells2D.size())
        return false; // another mesh was read since
    return writeWholeFile(path, [&snapshot](FileText& text) {
        appendHeader2D(text, snapshot);
        appendNumberLines(text, mesh.pointX);
        appendNumberLines(text, mesh.pointY);
        appendFields2D(text, snapshot);
        appendConnectivity2D(text);
    });
}

bool writeResult2D(const QString& path) {
    return writeResult2D(path, captureResult2D());
}

ResultSnapshot3D captureResult3D() {
    const CaseSettings& c = caseSettings;
    ResultSnapshot3D s;
    if (!makeRoom(s.cells, mesh.cells3D.size()))
        return s;
    for (const CellRecord3D& cell : mesh.cells3D)
        s.cells.push_back({cell.rho, cell.u, cell.v, cell.w, cell.T});
    s.heatOn = c.heatOn;
    s.thermalScaleKind = c.thermalScaleKind;
    s.alpha = c.alpha;
    s.dT = c.dT;
    s.L = c.L;
    return s;
}

bool writeResult3D(const QString& path, const ResultSnapshot3D& snapshot) {
    if (snapshot.cells.size() != mesh.cells3D.size())
        return false; // another mesh was read since
    return writeWholeFile(path, [&snapshot](FileText& text) {
        appendHeader3D(text, snapshot);
        appendNumberLines(text, mesh.pointX);
        appendNumberLines(text, mesh.pointY);
        appendNumberLines(text, mesh.pointZ);
        appendFields3D(text, snapshot);
        appendConnectivity3D(text);
    });
}

bool writeResult3D(const QString& path) {
    return writeResult3D(path, captureResult3D());
}

double exactSolutionError() {
    constexpr double outerRadius = 3.0;
    const double lnRatio = std::log(0.3); // of the inner circle's radius 0.9 to the outer one's
    double numerator = 0.0;
    double denominator = 0.0;
    for (const CellRecord& cell : mesh.cells2D) {
        const double r = std::sqrt(cell.xc * cell.xc + cell.yc * cell.yc);
        const double exact = std::log(r / outerRadius) / lnRatio + 1.0;
        numerator += (cell.T - exact) * (cell.T - exact);
        denominator += exact * exact;
    }
    return std::sqrt(numerator / (denominator + 1e-30));
}

} // namespace fluvane
