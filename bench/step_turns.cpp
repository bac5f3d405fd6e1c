// Samples and medians of the step benchmarks.
#include "step_turns.h"

#include "mesh/mesh.h"
#include "solver2d/loop_team.h"
#include "timing.h"

#include <algorithm>
#include <map>
#include <omp.h>
#include <string>
#include <utility>
#include <vector>

namespace fluvane::bench {

namespace {

constexpr int proposedThreads = 40; ///< what the run window proposes

/// The samples of each thing that takes its turn.
class Turns {
public:
    explicit Turns(double cells)
        : m_cells(cells), m_repetitions(std::max(1, static_cast<int>(1e5 / cells))),
          m_warmUps(cells < 2e5 ? std::max(1, m_repetitions / 2) : 0) {}

    /// Steps of the program, on a team that stays together as in a run; it has some steps to find the shares
    /// of its threads.
    void take(const std::string& name, int threads, const Step& step) {
        constexpr int found = 8;
        omp_set_num_threads(threads);
        withTeam([&] { sample(name, step, threads > 1 ? std::max(m_warmUps, found) : m_warmUps); });
    }
    /// Steps of the plain reference, which gathers its threads itself.
    void takePlain(const std::string& name, int threads, const Step& step) {
        omp_set_num_threads(threads);
#pragma omp parallel
        {
            // Starts the threads, so that no sample pays for it.
        }
        sample(name, step, m_warmUps);
    }
    double nanosecondsPerCell(const std::string& name) const {
        return median(m_seconds.at(name)) / m_cells * 1e9;
    }

    /// The median of what one took over what another took in the same turn.
    double ratio(const std::string& slow, const std::string& fast) const {
        std::vector<double> ratios = m_seconds.at(slow);
        for (std::size_t n = 0; n < ratios.size(); ++n)
            ratios[n] /= m_seconds.at(fast)[n];
        return median(ratios);
    }
    double last(const std::string& name) const {
        return m_seconds.at(name).back();
    }

    void report(benchmark::State& state) const {
        for (const auto& entry : m_seconds)
            state.counters[entry.first + "_ns/cell"] = nanosecondsPerCell(entry.first);
        state.counters["cells"] = m_cells;
        state.counters["processors"] = omp_get_num_procs();
    }

private:
    void sample(const std::string& name, const Step& step, int warmUps) {
        // On small meshes the threads of the turn before still spin, and the caches hold its data.
        secondsPerCall(warmUps, step);
        m_seconds[name].push_back(secondsPerCall(m_repetitions, step));
    }

    double m_cells;
    int m_repetitions;
    int m_warmUps;
    std::map<std::string, std::vector<double>> m_seconds;
};

} // namespace

void stepInTurns(benchmark::State& state, const Step& step, const Step& plainStep) {
    Turns turns(mesh.cellCount);
    const int all = omp_get_num_procs();
    step();
    plainStep();
    for ([[maybe_unused]] auto iteration : state) {
        turns.take("one", 1, step);
        turns.takePlain("plain_one", 1, plainStep);
        turns.take("all", all, step);
        turns.take("proposed", proposedThreads, step);
        turns.takePlain("plain_all", all, plainStep);
        state.SetIterationTime(turns.last("all"));
    }
    turns.report(state);
    state.counters["ratio_one"] = turns.ratio("plain_one", "one");
    state.counters["ratio_all"] = turns.ratio("plain_all", "all");
    state.counters["speedup"] = turns.ratio("one", "all");
    state.counters["proposed/all"] = turns.ratio("proposed", "all");
}

void stepOrdersInTurns(benchmark::State& state, const Step& step, const std::function<void()>& prepareOrdered,
                       const std::function<void()>& prepareShuffled) {
    prepareShuffled();
    step();
    Mesh other = std::move(mesh);
    prepareOrdered();
    step();
    Turns turns(mesh.cellCount);
    for ([[maybe_unused]] auto iteration : state) {
        for (const auto& [name, threads] : {std::pair("one", 1), std::pair("all", omp_get_num_procs())}) {
            turns.take(name, threads, step);
            std::swap(mesh, other);
            turns.take(std::string("shuffled_") + name, threads, step);
            std::swap(mesh, other);
        }
        state.SetIterationTime(turns.last("all"));
    }
    turns.report(state);
    state.counters["ratio_one"] = turns.ratio("shuffled_one", "one");
    state.counters["ratio_all"] = turns.ratio("shuffled_all", "all");
    mesh.clear();
}

} // namespace fluvane::bench
