// The threads that share out the loops of a step.
#pragma once

#include "solver2d/team_shares.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace fluvane {

/// Lets a fixed number of threads pass only together. A thread that waits spins for a moment and then sleeps,
/// so that it never keeps one that works off its core.
class TeamBarrier {
public:
    explicit TeamBarrier(int threads) : m_threads(threads) {}
    /// Returns for how many seconds this thread had to wait.
    double wait();

private:
    int m_threads;
    std::atomic<int> m_arrived{0};
    std::atomic<std::uint32_t> m_round{0};
};

/// One thread's part of the work that a team does together.
class TeamMember {
public:
    /// Its share by the parts of TeamShares; what it waits at barriers is added to `waited`, in seconds.
    TeamMember(TeamBarrier& barrier, std::int32_t firstPart, std::int32_t lastPart, double& waited)
        : m_barrier(&barrier), m_waited(&waited), m_firstPart(firstPart), m_lastPart(lastPart) {}

    /// The records of first .. last - 1 that fall to this thread: contiguous, threads in their order.
    struct Range {
        std::int32_t first;
        std::int32_t last;
    };
    Range shareOf(std::int32_t first, std::int32_t last) const;

    /// Waits until every thread of the team has come this far.
    void barrier() const { *m_waited += m_barrier->wait(); }

private:
    TeamBarrier* m_barrier;
    double* m_waited;
    std::int32_t m_firstPart;
    std::int32_t m_lastPart;
};

using TeamWork = std::function<void(const TeamMember&)>;

/// Keeps the OpenMP threads that are asked for together while `run` runs on the calling thread: runOnTeam
/// then need not gather them anew. Of more threads than the machine has processors, which could only take
/// turns, those beyond sleep meanwhile. Exceptions of `run` are passed on; a team inside a team changes
/// nothing.
void withTeam(const std::function<void()>& run);

/// Does `work` once on every thread of the team that works, or of one gathered for this call alone. Each has
/// one contiguous share of every loop in it, fixed before the work begins. From one call to the next the
/// shares follow what the threads get done, so that they come to the barriers together.
void runOnTeam(const TeamWork& work);

} // namespace fluvane
