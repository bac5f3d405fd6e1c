// A distribution that a plain record owns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>

namespace fluvane::plain {

using Distribution = std::unique_ptr<double[]>;

inline Distribution copyOfArray(const double* values, int count) {
    Distribution copy = std::make_unique<double[]>(static_cast<std::size_t>(count));
    std::copy_n(values, count, copy.get());
    return copy;
}

} // namespace fluvane::plain
