// Speed of writing numbers and result files: the program beside the library's own formatting, interleaved in
// one process. TMPDIR names the folder of the file; one in memory leaves the disk out.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/number_format.h"
#include "output/result_file.h"
#include "support/mesh_builder.h"
#include "support/random_state.h"
#include "timing.h"

#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

using namespace fluvane;
using bench::coreSecondsPerCall;
using bench::median;
using bench::secondsPerCall;

namespace {

/// A case of n by n distorted quadrilaterals in which no field of the file is 0 or short.
void prepareResult(int n) {
    support::resetProcessState();
    support::useD2Q9();
    support::PlaneCells cells = support::rectangles(n, n);
    support::distort(cells, 0.05);
    support::makeMesh(cells, 4, support::sidesOfBox());
    support::usePlainSettings(0.01);
    support::fillRandomState(1);
    caseSettings.heatOn = true;
    caseSettings.dT = 1.3;
    caseSettings.thermalMode = 1;
    caseSettings.Hsolidus = 0.0;
    caseSettings.Hliquidus = 1.4;
}

/// The same file as the program's, line by line through a stream.
void writeByStream(const QString& path, const ResultSnapshot2D& s, const std::string& head) {
    std::ofstream out(QFile::encodeName(path).constData(), std::ios::binary);
    out << head;
    const auto line = [&](double value) { out << value << "\r\n"; };
    for (const auto* coordinates : {&mesh.pointX, &mesh.pointY})
        for (const double value : *coordinates)
            line(value);
    for (const auto& cell : s.cells)
        line(cell.rho);
    for (const auto& cell : s.cells)
        line(cell.u / s.U0);
    for (const auto& cell : s.cells)
        line(cell.v / s.U0);
    for (const auto& cell : s.cells)
        line(cell.T / s.dT);
    for (const auto& cell : s.cells)
        line(cell.H);
    for (const auto& cell : s.cells)
        line(cell.H / s.Hliquidus);
    for (const CellRecord& cell : mesh.cells2D) {
        for (std::size_t j = 0; j < 4; ++j)
            out << cell.nodes[j] + 1 << ' ';
        out << "\r\n";
    }
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The lines before the coordinates.
std::string headOf(const QByteArray& content) {
    int end = 0;
    for (int line = 0; line < 11; ++line)
        end = content.indexOf('\n', end) + 1;
    return content.left(end).toStdString();
}

/// Argument: cells along a side. Figures by seconds on the core, but for the one by the clock on the wall.
void resultFile(benchmark::State& state) {
    prepareResult(static_cast<int>(state.range(0)));
    const QTemporaryDir folder;
    const QString path = folder.filePath("result.dat");
    const QString streamPath = folder.filePath("stream.dat");
    if (!writeResult2D(path))
        state.SkipWithError("the file was not written");
    const std::string head = headOf(contentOf(path));
    const ResultSnapshot2D snapshot = captureResult2D();

    std::vector<double> ours, wall, stream, capture, ratio;
    for ([[maybe_unused]] auto iteration : state) {
        double onWall = 0.0;
        const double a =
            coreSecondsPerCall(1, [&] { onWall = secondsPerCall(1, [&] { writeResult2D(path); }); });
        const double b = coreSecondsPerCall(1, [&] { writeByStream(streamPath, snapshot, head); });
        capture.push_back(coreSecondsPerCall(1, [] { benchmark::DoNotOptimize(captureResult2D()); }));
        ours.push_back(a);
        wall.push_back(onWall);
        stream.push_back(b);
        ratio.push_back(b / a);
        state.SetIterationTime(a);
    }
    const QByteArray content = contentOf(path);
    if (content != contentOf(streamPath))
        state.SkipWithError("the two files differ");
    const double megabytes = content.size() * 1e-6;
    state.counters["MB"] = megabytes;
    state.counters["MB/s"] = megabytes / median(ours);
    state.counters["wall_MB/s"] = megabytes / median(wall);
    state.counters["stream_MB/s"] = megabytes / median(stream);
    state.counters["capture_ms"] = median(capture) * 1e3;
    state.counters["ratio"] = median(ratio);
}

enum Kind { fieldLike, shortDecimals, tiny };

std::vector<double> numbers(Kind kind) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<double> values(std::size_t{1} << 16);
    for (double& value : values) {
        value = uniform(random);
        if (kind == shortDecimals)
            value = static_cast<int>(value * 1000.0) / 1000.0;
        else if (kind == tiny)
            value *= 1e-18;
    }
    return values;
}

/// Argument: kind of number.
void formatting(benchmark::State& state) {
    const std::vector<double> values = numbers(static_cast<Kind>(state.range(0)));
    const auto count = static_cast<double>(values.size());
    std::string text, plainText;
    std::vector<double> ours, toChars, print, ratio;
    for ([[maybe_unused]] auto iteration : state) {
        const double a = coreSecondsPerCall(10, [&] {
            text.clear();
            for (const double value : values)
                appendNumber(text, value);
        });
        const double b = coreSecondsPerCall(10, [&] {
            plainText.clear();
            char digits[32];
            for (const double value : values) {
                const auto end = std::to_chars(digits, digits + 32, value, std::chars_format::general, 6);
                plainText.append(digits, end.ptr);
            }
        });
        print.push_back(coreSecondsPerCall(10, [&] {
            char digits[32];
            for (const double value : values)
                benchmark::DoNotOptimize(std::snprintf(digits, sizeof digits, "%g", value));
        }));
        ours.push_back(a);
        toChars.push_back(b);
        ratio.push_back(b / a);
        state.SetIterationTime(a);
    }
    if (text != plainText)
        state.SkipWithError("the two texts differ");
    state.counters["MB/s"] = static_cast<double>(text.size()) * 1e-6 / median(ours);
    state.counters["ns/number"] = median(ours) / count * 1e9;
    state.counters["to_chars_ns"] = median(toChars) / count * 1e9;
    state.counters["printf_ns"] = median(print) / count * 1e9;
    state.counters["ratio"] = median(ratio);
}

} // namespace

BENCHMARK(formatting)
    ->ArgName("kind")
    ->Arg(fieldLike)
    ->Arg(shortDecimals)
    ->Arg(tiny)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(resultFile)
    ->ArgName("n")
    ->Arg(256)
    ->Arg(1000)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
