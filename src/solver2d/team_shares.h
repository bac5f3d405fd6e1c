// How much of a loop each thread of a team gets.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace fluvane {

/// Contiguous shares for the workers of a team, the same at first. Processors are not alike: a workstation
/// has fast and slow cores, and a core may be shared with another program. Of equal shares the slowest
/// worker's would decide, so each gets as much as it was seen to get done.
class TeamShares {
public:
    static constexpr std::int32_t parts = 1 << 20; ///< in which a share is counted

    explicit TeamShares(int workers);

    /// The parts of a worker: first and one past the last.
    std::int32_t first(int worker) const { return m_cuts[static_cast<std::size_t>(worker)]; }
    std::int32_t last(int worker) const { return first(worker + 1); }

    /// Takes note of how many seconds each worker was busy with its share of a job. Once they add up to some
    /// tenths of a millisecond, the shares follow: half the way the first time, then less and less, at
    /// last a tenth, so that what holds up a thread for a moment moves little.
    void note(std::span<const double> busy);

private:
    void follow();

    std::vector<double> m_sizes; ///< fractions of the whole, together 1
    std::vector<double> m_busy;  ///< seconds since the shares last followed
    std::vector<std::int32_t> m_cuts;
    int m_memory = 2; ///< over how many times the shares are averaged
};

} // namespace fluvane
