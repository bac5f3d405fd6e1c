// Goes through a 2D case as the windows do.
#include "plane_run.h"

#include "dialogs/case_settings.h"
#include "mesh/fluent_reader_2d.h"
#include "mesh/geometry_2d.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "require.h"
#include "setup/initial_fields.h"
#include "solver2d/drivers.h"
#include "support/mesh_file.h"
#include "velocity/lattice_properties.h"
#include "velocity/velocity_file.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace fluvane::validation {

namespace {

QString zoneWords(const support::Zone& z) {
    QString words = "\"No Slip->Translation\"";
    if (z.flowKind == 2)
        words = "\"Outflow\"";
    else if (z.ux != 0.0 || z.uy != 0.0)
        words += QString(", ux %1, uy %2").arg(number(z.ux), number(z.uy));
    if (z.thermalKind == 1)
        words += ", \"Constant T\" " + number(z.value);
    else if (z.thermalKind == 2)
        words += ", \"Constant flux\" " + number(z.value);
    return words;
}

QString physicsWords(const PlaneSetUp& s) {
    const char* const flows[] = {"Forced", "Natural", "None"};
    const char* const scales[] = {"dT", "q", "Source"};
    QString words = QString("\"Flow type\" \"%1\"").arg(flows[s.flowKind]);
    words += s.heat ? ", \"Heat transfer\" \"Considered\"" : ", \"Heat transfer\" \"None\"";
    if (s.heat)
        words += QString(", \"%1\" %2").arg(scales[s.scaleKind], number(s.scale, 6));
    words += ", L " + number(s.L) + ", \"Ma\" " + number(s.Ma);
    if (s.heat)
        words += (s.flowKind == 2 ? ", diffusivity " : ", \"Pr\" ") + number(s.Pr);
    if (s.flowKind != 2)
        words += (s.flowKind == 1 ? ", \"Ra\" " : ", \"Re\" ") + number(s.ReOrRa, 6);
    return words;
}

int stepsOf(const QString& line) {
    static const QRegularExpression pattern("Time Steps=(\\d+)");
    return pattern.match(line).captured(1).toInt();
}

/// Leaves only the result file of the step `last`.
QString keepLastResult(const Context& context, const QString& name, int last) {
    QDir folder(context.folder);
    const QString kept = name + "_" + QString::number(last) + ".dat";
    const QRegularExpression ours("^" + QRegularExpression::escape(name) + "_\\d+\\.dat$");
    for (const QString& file : folder.entryList(QDir::Files))
        if (file != kept && ours.match(file).hasMatch())
            folder.remove(file);
    return kept;
}

class Stopwatch {
public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

Run runOf(const QString& name, const PlaneMesh& plane, const PlaneSetUp& setUp) {
    Run run;
    run.name = name;
    run.mesh = plane.words;
    run.cells = mesh.cellCount;
    run.Ma = setUp.Ma;
    run.CFL = setUp.CFL;
    return run;
}

} // namespace

PlaneMesh boxMesh(const QString& words, const support::PlaneCells& cells, double lx, double ly) {
    return {words, cells, {"left", "right", "bottom", "top"}, support::sidesOfBox(lx, ly)};
}

PlaneMesh squares(int n) {
    return boxMesh(QString("%1 x %1 squares").arg(n), support::rectangles(n, n));
}

PlaneMesh triangles(int n) {
    return boxMesh(QString("%1 triangles (%2 x %2 squares cut in two)").arg(2 * n * n).arg(n),
                   support::cutRectangles(n, n));
}

PlaneMesh wallClusteredRectangles(int n, double s) {
    support::PlaneCells cells = support::rectangles(n, n);
    const auto place = [s](double t) { return 0.5 + 0.5 * std::tanh(s * (2.0 * t - 1.0)) / std::tanh(s); };
    for (auto* coordinates : {&cells.x, &cells.y})
        for (double& value : *coordinates)
            value = place(value);
    const double least = place(1.0 / n), most = place(0.5 + 0.5 / n) - place(0.5 - 0.5 / n);
    return boxMesh(
        QString("%1 x %1 rectangles, %2 at the walls to %3").arg(n).arg(number(least, 2), number(most, 2)),
        cells);
}

QStringList describe(const PlaneMesh& plane, const PlaneSetUp& s) {
    QStringList lines;
    lines << "Files: velocity file `" + s.velocityFile + "`; mesh of " + plane.words;
    lines << "Lattice: \"CFL number(0~1.0)\" " + number(s.CFL) + ", \"RT(>0)\" " + number(s.RT, 6);
    lines << "Physics: " + physicsWords(s);
    QStringList zones;
    for (std::size_t z = 0; z < s.zones.size(); ++z)
        zones << plane.zoneNames[static_cast<int>(z)] + " " + zoneWords(s.zones[z]);
    lines << "Boundary: " + zones.join("; ");
    lines << QString("Compute: \"Terminal\" %1, \"Error_U\" and \"Error_T\" %2")
                 .arg(s.interval)
                 .arg(number(s.tolerance));
    return lines;
}

void prepare(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& s) {
    support::resetProcessState();
    const QString velocities = QString(FLUVANE_CASES_DIR) + "/Velocity_file/" + s.velocityFile;
    const QString meshFile = QDir(context.folder).filePath(name + ".msh");
    require(readVelocityFile(velocities), s.velocityFile);
    support::makeMesh(plane.cells, plane.zoneNames.size(), plane.zoneOf);
    mesh.zoneNames.assign(plane.zoneNames.begin(), plane.zoneNames.end());
    support::writeMeshFile(meshFile);
    require(readMesh2D(meshFile) && buildGeometry2D(), meshFile);
    setLatticeProperties(s.CFL, s.RT);
    initialiseFields(s.L, s.Ma, s.Pr, s.ReOrRa, s.scale, s.flowKind, s.heat ? 1 : 0, s.scaleKind, 0, 0);
    require(static_cast<int>(s.zones.size()) == mesh.zoneCount, "a condition for each zone of " + name);
    for (std::size_t z = 0; z < s.zones.size(); ++z)
        support::assignZone(static_cast<int>(z), s.zones[z]);
    if (s.afterBoundary)
        s.afterBoundary();
}

Run runSteady(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& s) {
    prepare(context, name, plane, s);
    Run run = runOf(name, plane, s);
    QString report;
    setTerminalSink([&report](const QString& line) {
        if (line.startsWith("Time Steps="))
            report = line;
    });
    const Stopwatch watch;
    run.ended = runSteady2D(nullptr, context.threads, s.tolerance, s.tolerance, s.maxSteps, s.interval,
                            QDir(context.folder).filePath(name + ".dat"));
    run.seconds = watch.seconds();
    setTerminalSink({});
    run.steps = stepsOf(report);
    run.residual = residualOf(report);
    run.resultFile = keepLastResult(context, name, run.steps);
    std::printf("%s: %d steps, %.1f s, residual %.1e%s\n", qPrintable(name), run.steps, run.seconds,
                run.residual, run.ended ? "" : ", BROKEN OFF");
    std::fflush(stdout);
    return run;
}

Run runTransient(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& s,
                 int steps, int saveInterval) {
    prepare(context, name, plane, s);
    Run run = runOf(name, plane, s);
    setTerminalSink([](const QString&) {});
    const Stopwatch watch;
    run.ended = runTransient2D(nullptr, context.threads, steps, saveInterval,
                               QDir(context.folder).filePath(name + ".dat"));
    run.seconds = watch.seconds();
    setTerminalSink({});
    run.steps = steps;
    std::printf("%s: %d steps, %.1f s\n", qPrintable(name), run.steps, run.seconds);
    std::fflush(stdout);
    return run;
}

double residualOf(const QString& line) {
    static const QRegularExpression pattern("error_u=(\\S+)\\s+error_T=(\\S+)");
    const QRegularExpressionMatch match = pattern.match(line);
    return std::max(match.captured(1).toDouble(), match.captured(2).toDouble());
}

} // namespace fluvane::validation
