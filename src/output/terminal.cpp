// The terminal sink and the list of complaints.
#include "output/terminal.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace fluvane {

namespace {

struct Terminal {
    std::mutex mutex;
    std::function<void(const QString&)> sink;
    QStringList problems;
};

Terminal& terminal() {
    static Terminal instance;
    return instance;
}

} // namespace

void appendTerminalLine(const QString& line) {
    Terminal& t = terminal();
    const std::lock_guard lock(t.mutex);
    if (t.sink)
        t.sink(line);
    else
        sayOnStandardError(line);
}

void sayOnStandardError(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

void reportProblem(const QString& line) {
    appendTerminalLine(line);
    Terminal& t = terminal();
    const std::lock_guard lock(t.mutex);
    t.problems.append(line);
}

QStringList takeProblems() {
    Terminal& t = terminal();
    const std::lock_guard lock(t.mutex);
    return std::exchange(t.problems, {});
}

void setTerminalSink(std::function<void(const QString&)> sink) {
    Terminal& t = terminal();
    const std::lock_guard lock(t.mutex);
    t.sink = std::move(sink);
}

} // namespace fluvane
