// Shares: the same at first, then as large as their workers are fast.
#include "solver2d/team_shares.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using namespace fluvane;

namespace {

double sizeOf(const TeamShares& shares, int worker) {
    return static_cast<double>(shares.last(worker) - shares.first(worker)) / TeamShares::parts;
}

/// Jobs of one second of work, on workers of these speeds.
void work(TeamShares& shares, const std::vector<double>& speeds, int jobs, double seconds = 1.0) {
    for (int job = 0; job < jobs; ++job) {
        std::vector<double> busy;
        for (std::size_t n = 0; n < speeds.size(); ++n)
            busy.push_back(seconds * sizeOf(shares, static_cast<int>(n)) / speeds[n]);
        shares.note(busy);
    }
}

} // namespace

TEST(TeamShares, AreTheSameAtFirst) {
    for (const int workers : {1, 2, 3, 7, 128}) {
        const TeamShares shares(workers);
        EXPECT_EQ(shares.first(0), 0);
        for (int n = 0; n < workers; ++n)
            EXPECT_NEAR(sizeOf(shares, n), 1.0 / workers, 1e-6);
        EXPECT_EQ(shares.last(workers - 1), TeamShares::parts);
    }
}

TEST(TeamShares, BecomeAsLargeAsTheirWorkersAreFast) {
    TeamShares shares(3);
    work(shares, {1.0, 3.0, 2.0}, 100);
    EXPECT_NEAR(sizeOf(shares, 0), 1.0 / 6.0, 1e-3);
    EXPECT_NEAR(sizeOf(shares, 1), 3.0 / 6.0, 1e-3);
    EXPECT_NEAR(sizeOf(shares, 2), 2.0 / 6.0, 1e-3);
    work(shares, {1.0, 1.0, 1.0}, 100);
    for (int n = 0; n < 3; ++n)
        EXPECT_NEAR(sizeOf(shares, n), 1.0 / 3.0, 1e-3);
}

TEST(TeamShares, FollowFasterAtFirst) {
    TeamShares shares(2);
    work(shares, {1.0, 3.0}, 4);
    EXPECT_NEAR(sizeOf(shares, 0), 0.25 + 0.25 / 5.0, 1e-3);
}

TEST(TeamShares, StayOneBehindTheOtherWhateverIsNoted) {
    TeamShares shares(4);
    for (int job = 0; job < 500; ++job) {
        std::vector<double> busy;
        for (int n = 0; n < 4; ++n)
            busy.push_back((job * 7 + n * 5) % 11 == 0 ? 3.0 : 1e-3 * (1 + (job + n) % 3));
        shares.note(busy);
        EXPECT_EQ(shares.first(0), 0);
        EXPECT_EQ(shares.last(3), TeamShares::parts);
        for (int n = 0; n < 4; ++n)
            EXPECT_GE(sizeOf(shares, n), 0.02);
    }
}

TEST(TeamShares, OneHoldUpMovesThemLittle) {
    TeamShares shares(2);
    work(shares, {1.0, 1.0}, 20);
    shares.note(std::vector<double>{1e-3, 1.0});
    EXPECT_NEAR(sizeOf(shares, 0), 0.55, 1e-3);
}

TEST(TeamShares, AWorkerThatIsHardlyServedKeepsEnoughToBeSeenFast) {
    TeamShares shares(2);
    work(shares, {1.0, 1e-6}, 1000);
    EXPECT_GT(sizeOf(shares, 1), 0.04);
    work(shares, {1.0, 1.0}, 100);
    EXPECT_NEAR(sizeOf(shares, 1), 0.5, 1e-3);
}

TEST(TeamShares, ShortJobsAreJudgedTogether) {
    TeamShares shares(2);
    work(shares, {1.0, 3.0}, 9, 4e-5); // 20 and 6.7 microseconds each
    EXPECT_EQ(sizeOf(shares, 0), 0.5);
    work(shares, {1.0, 3.0}, 1000, 4e-5);
    EXPECT_NEAR(sizeOf(shares, 0), 0.25, 1e-3);
}

TEST(TeamShares, AJobWithoutWorkChangesNothing) {
    TeamShares shares(2);
    shares.note(std::vector<double>{0.0, 1.0});
    EXPECT_EQ(sizeOf(shares, 0), 0.5);
}
