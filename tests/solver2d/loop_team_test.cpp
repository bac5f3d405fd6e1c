// The team: everything is done once, nothing is passed early, and idle threads sleep.
#include "solver2d/loop_team.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <omp.h>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace fluvane;

namespace {

class LoopTeam : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        m_threads = omp_get_max_threads();
        omp_set_num_threads(GetParam());
    }
    void TearDown() override { omp_set_num_threads(m_threads); }

private:
    int m_threads = 1;
};

} // namespace

TEST_P(LoopTeam, SharesOutEveryRecordOnceInContiguousRanges) {
    for (const std::int32_t count : {0, 1, 5, 1000}) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(count) + 7);
        runOnTeam([&](const TeamMember& member) {
            const auto [first, last] = member.shareOf(7, 7 + count);
            for (std::int32_t i = first; i < last; ++i)
                ++visits[static_cast<std::size_t>(i)];
        });
        for (std::size_t i = 0; i < visits.size(); ++i)
            EXPECT_EQ(visits[i], i < 7 ? 0 : 1) << i << " of " << count;
    }
}

TEST_P(LoopTeam, NobodyPassesABarrierBeforeAllHaveComeToIt) {
    std::atomic<bool> early{false};
    std::vector<std::atomic<int>> written(500);
    const auto work = [&](const TeamMember& member) {
        for (int round = 1; round <= 200; ++round) {
            const auto [first, last] = member.shareOf(0, 500);
            for (std::int32_t i = first; i < last; ++i)
                written[static_cast<std::size_t>(i)].store(round, std::memory_order_relaxed);
            member.barrier();
            for (const auto& value : written)
                early = early || value.load(std::memory_order_relaxed) != round;
            member.barrier();
        }
    };
    withTeam([&] {
        for (int call = 0; call < 20; ++call)
            runOnTeam(work);
    });
    EXPECT_FALSE(early);
}

TEST_P(LoopTeam, TheCallerTakesPartAndReturnsWhenAllAreDone) {
    const auto caller = std::this_thread::get_id();
    std::atomic<bool> callerWorked{false};
    std::atomic<int> finished{0}, started{0};
    withTeam([&] {
        for (int n = 0; n < 100; ++n) {
            runOnTeam([&](const TeamMember&) {
                ++started;
                callerWorked = callerWorked || std::this_thread::get_id() == caller;
                ++finished;
            });
            EXPECT_EQ(started, finished);
        }
    });
    EXPECT_TRUE(callerWorked);
    EXPECT_GE(finished, 100);
}

TEST_P(LoopTeam, AWorkerThatIsSlowGetsLessAndEveryRecordIsStillDoneOnce) {
    if (std::min(GetParam(), omp_get_num_procs()) != 2)
        GTEST_SKIP() << "for two that work";
    constexpr std::int32_t count = 100;
    std::int32_t firstShare = 0;
    withTeam([&] {
        for (int job = 0; job < 60; ++job) {
            std::atomic<int> done{0};
            runOnTeam([&](const TeamMember& member) {
                const auto [first, last] = member.shareOf(0, count);
                const bool slow = first > 0;
                for (int half = 0; half < 2; ++half) {
                    const std::chrono::microseconds each(slow ? 120 : 40);
                    std::this_thread::sleep_for(each * (last - first) / 2);
                    member.barrier(); // what the fast one waits is not its work
                }
                done += last - first;
                if (first == 0)
                    firstShare = last;
            });
            ASSERT_EQ(done, count);
        }
    });
    EXPECT_GT(firstShare, 60);
    EXPECT_LT(firstShare, 85);
}

TEST_P(LoopTeam, ATeamInsideATeamIsTheSameTeam) {
    int runs = 0;
    withTeam([&] { withTeam([&] { ++runs; }); });
    EXPECT_EQ(runs, 1);
}

TEST_P(LoopTeam, PassesOnWhatTheRunThrows) {
    EXPECT_THROW(withTeam([] { throw std::runtime_error("full"); }), std::runtime_error);
    std::atomic<int> runs{0};
    withTeam([&] { runOnTeam([&](const TeamMember& m) { runs += m.shareOf(0, 1).last; }); });
    EXPECT_EQ(runs, 1) << "and works afterwards";
}

TEST_P(LoopTeam, ThreadsThatWaitUseNextToNoProcessorTime) {
    withTeam([] {
        runOnTeam([](const TeamMember&) {});
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // they fall asleep
        const std::clock_t before = std::clock();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10);
    });
}

INSTANTIATE_TEST_SUITE_P(Threads, LoopTeam, testing::Values(1, 2, 3, 7, 40));
