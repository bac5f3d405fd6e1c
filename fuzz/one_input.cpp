// An input file in memory, and checks of what is said.
#include "one_input.h"

#include "output/terminal.h"

#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <omp.h>
#include <sys/mman.h>
#include <unistd.h>

namespace fluvane::fuzz {

namespace {

int memoryFile() {
    static const int file = memfd_create("input", 0);
    return file;
}

const QString& memoryFilePath() {
    static const QString path = QStringLiteral("/proc/self/fd/%1").arg(memoryFile());
    return path;
}

} // namespace

const QString& fileOf(const std::uint8_t* data, std::size_t size) {
    const bool written =
        ftruncate(memoryFile(), 0) == 0 && pwrite(memoryFile(), data, size, 0) == static_cast<ssize_t>(size);
    expect(written, "the input could not be put into its file");
    return memoryFilePath();
}

void expect(bool holds, const char* property) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", property);
    std::abort();
}

int checkedProblems() {
    const QStringList problems = takeProblems();
    for (const QString& problem : problems) {
        expect(problem.contains(memoryFilePath()), "every complaint names the file");
        expect(!problem.contains(QLatin1Char('\n')), "every complaint is one line");
    }
    return problems.size();
}

void prepare() {
    omp_set_num_threads(1);
    setTerminalSink([](const QString&) {});
}

} // namespace fluvane::fuzz
