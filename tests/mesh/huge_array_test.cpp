// The aligned table of the solver.
#include "mesh/huge_array.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <utility>

namespace fluvane {

namespace {

struct Counted {
    static inline int alive = 0;
    int value = 7;
    Counted() {
#pragma omp atomic
        ++alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() {
#pragma omp atomic
        --alive;
    }
};

} // namespace

TEST(HugeArrayTest, ElementsAreValueInitialisedAndAligned) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{1000}, std::size_t{1} << 19}) {
        const HugeArray<double> array(size);
        EXPECT_EQ(array.size(), size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array.data()) % 64, 0U);
        for (const double value : array)
            ASSERT_EQ(value, 0.0);
    }
}

TEST(HugeArrayTest, EveryElementIsConstructedAndDestroyedOnce) {
    {
        const HugeArray<Counted> array(1000);
        EXPECT_EQ(Counted::alive, 1000);
        EXPECT_EQ(array[999].value, 7);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(HugeArrayTest, MovingLeavesTheSourceEmptyAndFreesTheTarget) {
    HugeArray<Counted> a(10);
    HugeArray<Counted> b(20);
    const Counted* const first = a.data();
    b = std::move(a);
    EXPECT_EQ(Counted::alive, 10);
    EXPECT_EQ(b.data(), first);
    EXPECT_EQ(b.size(), 10U);
    b = HugeArray<Counted>();
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_TRUE(b.empty());
    EXPECT_EQ(b.begin(), b.end());
}

TEST(HugeArrayTest, ShrinkingKeepsTheFirstElementsAndDestroysTheOthers) {
    HugeArray<Counted> array(10);
    array[2].value = 5;
    array.shrink(3);
    EXPECT_EQ(Counted::alive, 3);
    EXPECT_EQ(array.size(), 3U);
    EXPECT_EQ(array[2].value, 5);
    EXPECT_EQ(array.end() - array.begin(), 3);
    array.shrink(4);
    EXPECT_EQ(array.size(), 3U);
    array.shrink(0);
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_TRUE(array.empty());
}

#if defined(__linux__)
TEST(HugeArrayTest, ShrinkingGivesMappedMemoryBack) {
    constexpr std::size_t size = std::size_t{8} << 20;
    const auto mappedPages = [] {
        std::ifstream file("/proc/self/statm");
        long mapped = 0;
        file >> mapped;
        return mapped;
    };
    const long before = mappedPages();
    HugeArray<double> array(size);
    array[1000] = 2.5;
    const long full = mappedPages();
    EXPECT_GE(full - before, 16000);
    array.shrink(size / 4);
    EXPECT_LT(mappedPages() - before, (full - before) / 3);
    EXPECT_EQ(array[1000], 2.5);
    EXPECT_EQ(array[size / 4 - 1], 0.0);
    array.shrink(10); // less than is mapped by itself
    EXPECT_EQ(array[9], 0.0);
    HugeArray<double> other = std::move(array);
    other = HugeArray<double>();
    EXPECT_LE(mappedPages() - before, 64);
}

TEST(HugeArrayTest, WhatNobodyTouchesTakesNoMemoryAlsoTheNextTime) {
    constexpr std::size_t size = std::size_t{2} << 20;
    const auto residentPages = [] {
        std::ifstream file("/proc/self/statm");
        long all = 0, resident = 0;
        file >> all >> resident;
        return resident;
    };
    const long before = residentPages();
    for (int turn = 0; turn < 3; ++turn) {
        HugeArray<double> touched(size);
        std::fill(touched.begin(), touched.end(), 1.0);
    }
    const HugeArray<double> untouched(size);
    EXPECT_LT(residentPages() - before, 512);
    EXPECT_EQ(untouched[size - 1], 0.0);
}
#endif

TEST(HugeArrayTest, SizesBeyondTheAddressSpaceThrow) {
    EXPECT_THROW(HugeArray<double>(SIZE_MAX / 2), std::bad_alloc);
}

} // namespace fluvane
