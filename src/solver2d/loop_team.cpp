// A team of OpenMP threads that wait for work without wasting the processors.
#include "solver2d/loop_team.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <memory>
#include <omp.h>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace fluvane {

namespace {

void relax() {
#if defined(__x86_64__) || defined(__i386__)
    _mm_pause();
#endif
}

/// Waits until the value is no longer `old`: some tens of microseconds awake, which is longer than the
/// threads of a loop usually wait for each other, then asleep.
template <class T>
void waitWhile(const std::atomic<T>& value, T old) {
    constexpr int spins = 3000;
    for (int n = 0; n < spins; ++n) {
        if (value.load(std::memory_order_acquire) != old)
            return;
        relax();
    }
    value.wait(old, std::memory_order_acquire);
}

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class Team {
public:
    Team(int threads, int workers)
        : m_threads(threads), m_workers(workers), m_barrier(workers), m_shares(workers),
          m_waited(static_cast<std::size_t>(workers)), m_busy(static_cast<std::size_t>(workers)) {}

    /// The calling thread takes part as the first.
    void run(const TeamWork& work) {
        m_work = &work;
        m_jobs.fetch_add(1, std::memory_order_release);
        m_jobs.notify_all();
        takePart(0);
        m_shares.note(m_busy);
    }

    void dismiss() {
        m_work = nullptr;
        m_jobs.fetch_add(1, std::memory_order_release);
        m_jobs.notify_all();
        m_dismissed.store(true, std::memory_order_release);
        m_dismissed.notify_all();
    }

    /// Works or sleeps until the team is dismissed.
    void serve(int thread) {
        const int worker = workerOf(thread);
        if (worker < 0) {
            m_dismissed.wait(false, std::memory_order_acquire);
            return;
        }
        for (std::uint32_t seen = 0;; ++seen) {
            waitWhile(m_jobs, seen);
            if (!m_work)
                return;
            takePart(worker);
        }
    }

private:
    /// Does the worker's part of the job, and says before the last barrier how long it was busy.
    void takePart(int worker) {
        const auto n = static_cast<std::size_t>(worker);
        const Clock::time_point start = Clock::now();
        m_waited[n].seconds = 0.0;
        (*m_work)({m_barrier, m_shares.first(worker), m_shares.last(worker), m_waited[n].seconds});
        m_busy[n] = secondsSince(start) - m_waited[n].seconds;
        m_barrier.wait();
    }

    /// The workers are spread over the threads as pinning spreads the threads over the processors: neighbours
    /// may share one. -1 for a thread that sleeps.
    int workerOf(int thread) const {
        const int worker = static_cast<int>((std::int64_t{thread} * m_workers + m_threads - 1) / m_threads);
        return firstThreadOf(worker) == thread ? worker : -1;
    }
    int firstThreadOf(int worker) const {
        return static_cast<int>(std::int64_t{m_threads} * worker / m_workers);
    }

    /// In a cache line of its own: its worker writes it at every barrier.
    struct alignas(64) Waited {
        double seconds = 0.0;
    };

    int m_threads;
    int m_workers;
    TeamBarrier m_barrier;
    TeamShares m_shares;
    std::vector<Waited> m_waited; ///< of each worker, at the barriers of the present job
    std::vector<double> m_busy;   ///< of each worker, in seconds
    const TeamWork* m_work = nullptr;
    std::atomic<std::uint32_t> m_jobs{0};
    std::atomic<bool> m_dismissed{false};
};

thread_local Team* teamOfThisThread = nullptr;

} // namespace

double TeamBarrier::wait() {
    const std::uint32_t round = m_round.load(std::memory_order_acquire);
    if (m_arrived.fetch_add(1, std::memory_order_acq_rel) + 1 == m_threads) {
        m_arrived.store(0, std::memory_order_relaxed);
        m_round.fetch_add(1, std::memory_order_release);
        m_round.notify_all();
        return 0.0;
    }
    const Clock::time_point start = Clock::now();
    waitWhile(m_round, round);
    return secondsSince(start);
}

TeamMember::Range TeamMember::shareOf(std::int32_t first, std::int32_t last) const {
    const std::int64_t count = last - first;
    const auto cut = [&](std::int32_t part) {
        return first + static_cast<std::int32_t>(count * part / TeamShares::parts);
    };
    return {cut(m_firstPart), cut(m_lastPart)};
}

void withTeam(const std::function<void()>& run) {
    if (teamOfThisThread) {
        run();
        return;
    }
    std::exception_ptr failure;
    // Fewer threads than asked for may come, and not every share would find its thread if they were counted
    // beforehand.
    std::unique_ptr<Team> team;
#pragma omp parallel
    {
#pragma omp single
        {
            const int threads = omp_get_num_threads();
            team = std::make_unique<Team>(threads, std::min(threads, omp_get_num_procs()));
        }
        if (omp_get_thread_num() == 0) {
            teamOfThisThread = team.get();
            try {
                run();
            } catch (...) {
                failure = std::current_exception();
            }
            teamOfThisThread = nullptr;
            team->dismiss();
        } else {
            team->serve(omp_get_thread_num());
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

void runOnTeam(const TeamWork& work) {
    withTeam([&work] { teamOfThisThread->run(work); });
}

} // namespace fluvane
