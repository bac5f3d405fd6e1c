// Hilbert's curve and sorting along it.
#include "mesh/storage_order.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fluvane {

namespace {

/// Skilling's transformation of coordinates to the transposed index along the curve, then its bits in order.
template <std::size_t D>
std::uint64_t indexOnCurve(CurvePoint<D> x) {
    constexpr int bits = curveBits(D);
    for (std::uint32_t q = std::uint32_t{1} << (bits - 1); q > 1; q >>= 1) {
        const std::uint32_t p = q - 1;
        for (std::size_t i = 0; i < D; ++i) {
            if (x[i] & q) {
                x[0] ^= p;
            } else {
                const std::uint32_t t = (x[0] ^ x[i]) & p;
                x[0] ^= t;
                x[i] ^= t;
            }
        }
    }
    for (std::size_t i = 1; i < D; ++i)
        x[i] ^= x[i - 1];
    std::uint32_t t = 0;
    for (std::uint32_t q = std::uint32_t{1} << (bits - 1); q > 1; q >>= 1)
        if (x[D - 1] & q)
            t ^= q - 1;
    std::uint64_t index = 0;
    for (int bit = bits - 1; bit >= 0; --bit)
        for (std::size_t i = 0; i < D; ++i)
            index = index << 1 | (((x[i] ^ t) >> bit) & 1U);
    return index;
}

/// Scales numbers between `low` and `low + extent` to those of a CurvePoint.
std::uint32_t onGrid(double value, double low, double extent, int bits) {
    const double largest = std::ldexp(1.0, bits) - 1.0;
    const double scaled = (value - low) / extent * largest;
    return scaled > 0.0 ? static_cast<std::uint32_t>(std::min(scaled, largest)) : 0U; // also for NaN
}

std::array<double, 2> coordinatesOf(const Vec2& p) {
    return {p.x, p.y};
}

std::array<double, 3> coordinatesOf(const Vec3& p) {
    return {p.x, p.y, p.z};
}

template <std::size_t D, class Centres>
StorageOrder orderOf(const Centres& centres) {
    std::array<double, D> low;
    std::array<double, D> high;
    low.fill(HUGE_VAL);
    high.fill(-HUGE_VAL);
    for (const auto& centre : centres) {
        const auto p = coordinatesOf(centre);
        for (std::size_t k = 0; k < D; ++k) {
            low[k] = std::min(low[k], p[k]);
            high[k] = std::max(high[k], p[k]);
        }
    }
    // One scale for all axes: the curve follows the cells' own shape.
    double extent = 0.0;
    for (std::size_t k = 0; k < D; ++k)
        extent = std::max(extent, high[k] - low[k]);
    std::vector<std::uint64_t> keys(centres.size());
    const auto count = static_cast<std::ptrdiff_t>(keys.size());
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const auto p = coordinatesOf(centres[static_cast<std::size_t>(i)]);
        CurvePoint<D> point;
        for (std::size_t k = 0; k < D; ++k)
            point[k] = onGrid(p[k], low[k], extent, curveBits(D));
        keys[static_cast<std::size_t>(i)] = alongCurve(point);
    }
    return orderByKey(keys);
}

} // namespace

std::uint64_t alongCurve(CurvePoint<2> point) {
    return indexOnCurve<2>(point);
}

std::uint64_t alongCurve(CurvePoint<3> point) {
    return indexOnCurve<3>(point);
}

StorageOrder orderByKey(const std::vector<std::uint64_t>& keys) {
    std::vector<std::pair<std::uint64_t, std::int32_t>> sorted(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i)
        sorted[i] = {keys[i], static_cast<std::int32_t>(i)};
    std::sort(sorted.begin(), sorted.end());
    StorageOrder order;
    order.slotOf.resize(keys.size());
    order.numberAt.resize(keys.size());
    for (std::size_t slot = 0; slot < sorted.size(); ++slot) {
        order.numberAt[slot] = sorted[slot].second;
        order.slotOf[static_cast<std::size_t>(sorted[slot].second)] = static_cast<std::int32_t>(slot);
    }
    return order;
}

StorageOrder orderAlongCurve(const HugeArray<Vec2>& centres) {
    return orderOf<2>(centres);
}

StorageOrder orderAlongCurve(const HugeArray<Vec3>& centres) {
    return orderOf<3>(centres);
}

} // namespace fluvane
