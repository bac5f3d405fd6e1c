// The threads that share out the loops of a step.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

namespace fluvane {

/// Lets a fixed number of threads pass only together. A thread that waits spins for a moment and then sleeps,
/// so that it never keeps one that works off its core.
class TeamBarrier {
public:
    explicit TeamBarrier(int threads) : m_threads(threads) {}
    void wait();

private:
    int m_threads;
    std::atomic<int> m_arrived{0};
    std::atomic<std::uint32_t> m_round{0};
};

/// One thread's part of the work that a team does together.
class TeamMember {
public:
    TeamMember(TeamBarrier& barrier, int firstShare, int lastShare, int shares)
        : m_barrier(&barrier), m_firstShare(firstShare), m_lastShare(lastShare), m_shares(shares) {}

    /// The records of first .. last - 1 that fall to this thread: contiguous, threads in their order.
    struct Range {
        std::int32_t first;
        std::int32_t last;
    };
    Range shareOf(std::int32_t first, std::int32_t last) const;

    /// Waits until every thread of the team has come this far.
    void barrier() const { m_barrier->wait(); }

private:
    TeamBarrier* m_barrier;
    int m_firstShare;
    int m_lastShare;
    int m_shares;
};

using TeamWork = std::function<void(const TeamMember&)>;

/// Keeps the OpenMP threads that are asked for together while `run` runs on the calling thread: runOnTeam
/// then need not gather them anew. Of more threads than the machine has processors, which could only take
/// turns, those beyond sleep meanwhile. Exceptions of `run` are passed on; a team inside a team changes
/// nothing.
void withTeam(const std::function<void()>& run);

/// Does `work` once on every thread of the team, or of one gathered for this call alone. The work is cut into
/// one share for each thread that is asked for; a thread that works takes a contiguous row of them.
void runOnTeam(const TeamWork& work);

} // namespace fluvane
