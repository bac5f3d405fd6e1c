// The largest difference between two sets of numbers.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace fluvane::support {

/// The largest difference of two arrays over all records, relative to the largest magnitude among them.
struct Deviation {
    double difference = 0.0;
    double magnitude = 0.0;

    void add(double ours, double theirs) {
        if (!std::isfinite(ours) || !std::isfinite(theirs)) {
            difference = INFINITY;
            return;
        }
        difference = std::max(difference, std::abs(ours - theirs));
        magnitude = std::max(magnitude, std::abs(theirs));
    }
    void add(const double* ours, const double* theirs, int count) {
        for (int k = 0; k < count; ++k)
            add(ours[k], theirs[k]);
    }
    void expectSmall(const char* what) const { EXPECT_LE(difference, 1e-13 * magnitude) << what; }
};

} // namespace fluvane::support
