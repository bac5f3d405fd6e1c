// The step gate and the run guard under contention.
#include "mesh/run_gate.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace fluvane {
namespace {

class RunGuard : public ::testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }

private:
    static void reset() {
        endRun();
        clearStopRequest();
    }
};

TEST(StepGate, LetsAVisitorInBeforeTheRunsNextHold) {
    StepGate gate;
    std::atomic<bool> done{false};
    std::atomic<int> stepsEnded{0};
    std::thread run([&] { // comes back without any pause between its steps
        while (!done) {
            gate.enterRun();
            std::this_thread::sleep_for(std::chrono::microseconds(500));
            ++stepsEnded;
            gate.leave();
        }
    });
    std::vector<int> stepsWaited;
    for (int i = 0; i < 101; ++i) {
        const int before = stepsEnded;
        gate.enterVisitor();
        stepsWaited.push_back(stepsEnded - before);
        gate.leave();
        std::this_thread::sleep_for(std::chrono::microseconds(700)); // the run gets its turns too
    }
    done = true;
    run.join();
    // The system may put this thread aside before it reaches the gate, so the most common wait counts.
    std::sort(stepsWaited.begin(), stepsWaited.end());
    EXPECT_LE(stepsWaited[stepsWaited.size() / 2], 1);
    EXPECT_GT(stepsEnded, 20) << "the run was kept out";
}

TEST(StepGate, NeverHasTwoHolders) {
    StepGate gate;
    std::atomic<int> holders{0};
    std::atomic<int> most{0};
    long unguarded = 0; // lost updates would show here
    const auto hold = [&] {
        const int now = ++holders;
        if (now > most)
            most = now;
        ++unguarded;
        --holders;
    };
    constexpr int rounds = 3000;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < rounds; ++i) {
                if (t == 0)
                    gate.enterRun();
                else
                    gate.enterVisitor();
                hold();
                gate.leave();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(most, 1);
    EXPECT_EQ(unguarded, 4L * rounds);
}

TEST(StepGate, IsOneForTheProcessAndFreedAtTheEndOfAHold) {
    { const RunHold hold; }
    { const VisitorHold hold; }
    std::thread elsewhere([] { const RunHold hold; });
    elsewhere.join();
    EXPECT_EQ(&stepGate(), &stepGate());
    std::atomic<bool> entered{false};
    auto hold = std::make_unique<VisitorHold>();
    std::thread waiting([&] {
        const RunHold run;
        entered = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    hold.reset();
    waiting.join();
    EXPECT_TRUE(entered);
}

TEST_F(RunGuard, GivesTheMeshToExactlyOneOfManyThreads) {
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> winners{0};
        std::atomic<bool> go{false};
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&] {
                while (!go)
                    std::this_thread::yield();
                winners += tryStartRun() ? 1 : 0;
            });
        go = true;
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(winners, 1);
        ASSERT_TRUE(runActive());
        endRun();
        ASSERT_FALSE(runActive());
    }
}

TEST_F(RunGuard, GivesTheMeshAgainOnlyAfterTheRunEnded) {
    EXPECT_FALSE(runActive());
    EXPECT_TRUE(tryStartRun());
    EXPECT_FALSE(tryStartRun());
    endRun();
    EXPECT_TRUE(tryStartRun());
}

TEST_F(RunGuard, AStopRequestEndsThisRunAndEveryLaterOne) {
    ASSERT_TRUE(tryStartRun());
    EXPECT_FALSE(stopRequested());
    requestStop();
    EXPECT_TRUE(stopRequested());
    EXPECT_TRUE(runActive()) << "the run gives the mesh back itself";
    endRun();
    EXPECT_FALSE(tryStartRun()) << "the program is closing";
    EXPECT_FALSE(runActive());
    clearStopRequest();
    EXPECT_FALSE(stopRequested());
    EXPECT_TRUE(tryStartRun());
}

} // namespace
} // namespace fluvane
