// Shares that follow what each worker gets done.
#include "solver2d/team_shares.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace fluvane {

TeamShares::TeamShares(int workers)
    : m_sizes(static_cast<std::size_t>(workers), 1.0 / workers), m_busy(m_sizes.size(), 0.0),
      m_cuts(m_sizes.size() + 1) {
    constexpr std::int64_t whole = parts;
    for (int n = 0; n <= workers; ++n)
        m_cuts[static_cast<std::size_t>(n)] = static_cast<std::int32_t>(whole * n / workers);
}

void TeamShares::note(std::span<const double> busy) {
    constexpr double enough = 2e-4; // seconds: above the clock's grain, less than a step of most meshes
    for (std::size_t n = 0; n < m_busy.size(); ++n)
        m_busy[n] += busy[n];
    if (m_busy.size() < 2 || *std::max_element(m_busy.begin(), m_busy.end()) < enough)
        return;
    follow();
    std::fill(m_busy.begin(), m_busy.end(), 0.0);
}

void TeamShares::follow() {
    if (!std::all_of(m_busy.begin(), m_busy.end(), [](double seconds) { return seconds > 0.0; }))
        return;
    const auto speed = [this](std::size_t n) { return m_sizes[n] / m_busy[n]; };
    double all = 0.0;
    for (std::size_t n = 0; n < m_sizes.size(); ++n)
        all += speed(n);
    const double pace = 1.0 / m_memory;
    m_memory = std::min(m_memory + 1, 10);
    // Enough of a share to see whether its worker has become faster.
    const double least = 0.1 / static_cast<double>(m_sizes.size());
    for (std::size_t n = 0; n < m_sizes.size(); ++n)
        m_sizes[n] = std::max(least, m_sizes[n] + pace * (speed(n) / all - m_sizes[n]));
    const double whole = std::accumulate(m_sizes.begin(), m_sizes.end(), 0.0);
    double end = 0.0;
    for (std::size_t n = 0; n + 1 < m_sizes.size(); ++n) {
        m_sizes[n] /= whole;
        end += m_sizes[n];
        m_cuts[n + 1] = static_cast<std::int32_t>(std::lround(end * parts));
    }
    m_sizes.back() /= whole;
}

} // namespace fluvane
