// A process without windows that the reliability scripts start, watch and kill: it runs shipped cases.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "reliability/cases.h"
#include "solver2d/time_step.h"
#include "support/mesh_builder.h"
#include "support/mesh_file.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <chrono>
#include <csignal>
#include <cstdio>

using namespace fluvane;

namespace {

/// What the terminal pane would show goes to standard output, and at once: the process may be killed.
void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

/// NUMBER THREADS STEPS INTERVAL FILE: prepares and runs one case.
bool runOne(const QStringList& a) {
    if (!reliability::prepareCase(a[0].toInt()))
        return false;
    say("ready");
    return reliability::runCase(a[1].toUInt(), a[2].toInt(), a[3].toInt(), a[4]);
}

/// FIRST END THREADS STEPS FOLDER: one case after another, each saved at its end as case<number>_<name>.dat.
bool runSequence(const QStringList& a) {
    for (int number = a[0].toInt(); number < a[1].toInt(); ++number) {
        const QString file = QDir(a[4]).filePath(QStringLiteral("case%1.dat").arg(number));
        const int steps = a[3].toInt();
        if (!reliability::prepareCase(number) || !reliability::runCase(a[2].toUInt(), steps, steps, file))
            return false;
    }
    return true;
}

/// MESH FILE: steps the flow on a 2D mesh file and saves under one name until it is killed.
bool rewrite(const QStringList& a) {
    if (!reliability::prepareFlow(a[0]) || !writeResult2D(a[1]))
        return false;
    say("ready");
    for (;;) {
        step2D();
        if (!writeResult2D(a[1]))
            return false;
    }
}

struct Use {
    double seconds;
    long kilobytes;
    qsizetype files;
};

Use presentUse() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return {};
    const long pages = statm.readAll().split(' ').value(1).toLong();
    statm.close();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    return {std::chrono::duration<double>(now).count(), pages * 4,
            descriptors.entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size()};
}

/// NUMBER THREADS STEPS INTERVAL REPORTS FILE: one long run; at each of REPORTS parts of it a line "use" with
/// the step, the seconds, the memory in kB and the open files.
bool soak(const QStringList& a) {
    if (!reliability::prepareCase(a[0].toInt()))
        return false;
    const int steps = a[2].toInt();
    const int interval = a[3].toInt();
    const int savesAReport = steps / interval / a[4].toInt();
    int saves = 0;
    setTerminalSink([&](const QString& line) {
        const bool saved = line.startsWith("time=") || line.startsWith("Time Steps=");
        if (saved && saves++ % savesAReport == 0) {
            const Use use = presentUse();
            say(QStringLiteral("use %1 %2 %3 %4")
                    .arg((saves - 1) * interval)
                    .arg(use.seconds, 0, 'f', 3)
                    .arg(use.kilobytes)
                    .arg(use.files));
        }
    });
    return reliability::runCase(a[1].toUInt(), steps, interval, a[5]);
}

/// SIDE FILE: a mesh file of a square of SIDE by SIDE cells.
bool makeSquare(const QStringList& a) {
    support::useD2Q9();
    support::makeMesh(support::rectangles(a[0].toInt(), a[0].toInt()), 4, support::sidesOfBox());
    mesh.zoneNames = {"left", "right", "bottom", "top"};
    support::writeMeshFile(a[1]);
    return true;
}

struct Command {
    const char* name;
    int arguments;
    bool (*run)(const QStringList&);
};

constexpr Command commands[] = {{"run", 5, runOne},
                                {"sequence", 5, runSequence},
                                {"rewrite", 2, rewrite},
                                {"soak", 6, soak},
                                {"square", 2, makeSquare}};

} // namespace

int main(int argc, char* argv[]) {
    std::signal(SIGXFSZ, SIG_IGN); // as the program itself does
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const QString name = arguments.isEmpty() ? QString() : arguments.takeFirst();
    setTerminalSink(say);
    for (const Command& command : commands)
        if (name == command.name && arguments.size() == command.arguments)
            return command.run(arguments) ? 0 : 1;
    std::fprintf(stderr, "case_process COMMAND ...\n");
    return 2;
}
