// Captures the fields and formats the result files.
#include "output/result_file.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/number_format.h"
#include "output/whole_file.h"
#include "solver2d/enthalpy_relation.h"

#include <cmath>
#include <cstddef>
#include <string>

namespace fluvane {

namespace {

const char* const lineEnd = "\r\n";
constexpr std::size_t bytesPerPoint = 2 * 14; // room for two lines of the longest common number
constexpr std::size_t bytesPerCell = 6 * 14 + 4 * 9 + 2;

void appendLine(std::string& text, const char* line) {
    text += line;
    text += lineEnd;
}

void appendFlag(std::string& text, const char* key, bool on) {
    text += key;
    text += on ? '1' : '0';
    text += lineEnd;
}

void appendParameter(std::string& text, const char* key, double value) {
    text += key;
    appendNumber(text, value);
}

void appendNumberLine(std::string& text, double value) {
    appendNumber(text, value);
    text += lineEnd;
}

void appendHeader2D(std::string& text, const ResultSnapshot2D& s) {
    appendLine(text, "TITLE = \"UNSTRUCTED TEST\"");
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
    appendLine(text, "VARIABLES = \"X\", \"Y\", \"rho\",\"u\",\"v\",\"T\",\"H\",\"fl\"");
    text += "ZONE N=";
    appendInteger(text, mesh.pointCount);
    text += ", E=";
    appendInteger(text, static_cast<std::int64_t>(s.cells.size()));
    appendLine(text, ", ZONETYPE = FEQUADRILATERAL");
    appendLine(text, "DATAPACKING = BLOCK");
    // Deliberate: the range names seven cell-centred variables though the file has six; readers of these
    // files know the line as it stands.
    appendLine(text, "VARLOCATION = ([1-2]=NODAL, [3-9]=CELLCENTERED)");
}

/// The temperature in units of the thermal scale. Deliberate: with an unknown scale kind nothing is written,
/// not even a line end, rather than a value in a made-up unit.
void appendScaledTemperature(std::string& text, double T, const ResultSnapshot2D& s) {
    if (!s.heatOn)
        appendNumberLine(text, T);
    else if (s.thermalScaleKind == 0)
        appendNumberLine(text, T / s.dT);
    else if (s.thermalScaleKind == 1)
        appendNumberLine(text, s.alpha * T / s.dT / s.L);
    else if (s.thermalScaleKind == 2)
        appendNumberLine(text, s.alpha * T / s.dT / s.L / s.L);
}

void appendFields2D(std::string& text, const ResultSnapshot2D& s) {
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
void appendConnectivity2D(std::string& text) {
    for (const CellRecord& cell : mesh.cells2D) {
        for (std::size_t j = 0; j < static_cast<std::size_t>(cell.nodeCount); ++j) {
            appendInteger(text, std::int64_t{cell.nodes[j]} + 1);
            text += ' ';
        }
        if (cell.nodeCount < CellRecord::maxFaces) {
            appendInteger(text, std::int64_t{cell.nodes[0]} + 1);
            text += ' ';
        }
        text += lineEnd;
    }
}

} // namespace

ResultSnapshot2D captureResult2D() {
    const CaseSettings& c = caseSettings;
    ResultSnapshot2D s;
    s.cells.reserve(mesh.cells2D.size());
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
    std::string text;
    text.reserve(std::size_t{1024} + static_cast<std::size_t>(mesh.pointCount) * bytesPerPoint +
                 snapshot.cells.size() * bytesPerCell);
    appendHeader2D(text, snapshot);
    for (const double x : mesh.pointX)
        appendNumberLine(text, x);
    for (const double y : mesh.pointY)
        appendNumberLine(text, y);
    appendFields2D(text, snapshot);
    appendConnectivity2D(text);
    return writeWholeFile(path, text);
}

bool writeResult2D(const QString& path) {
    return writeResult2D(path, captureResult2D());
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
