// The discrete velocities of the kinetic model.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace fluvane {

struct Vec2 {
    double x = 0.0;
    double y = 0.0;
};

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// The velocity set read from a velocity file, at most `capacity` velocities. Index 0 is the rest velocity.
/// Components are in lattice units once the lattice properties were set; before that, as in the file.
struct VelocitySet {
    static constexpr std::int32_t capacity = 30;

    std::int32_t velocityCount = 0; ///< Q; -1 after a file that could not be opened
    std::array<Vec2, capacity> xi2D{};
    std::array<Vec3, capacity> xi3D{};
    std::array<double, capacity> weights{};
    std::array<std::int32_t, capacity> opposite{}; ///< 0-based index of the velocity -xi_k

    /// False when the opposite of a velocity is beyond the set: its line was the last of the file and did not
    /// count. Walls cannot reflect then.
    bool hasAllOpposites() const {
        for (std::int32_t k = 0; k < velocityCount; ++k)
            if (opposite[static_cast<std::size_t>(k)] >= velocityCount)
                return false;
        return true;
    }
};

extern VelocitySet velocitySet;

} // namespace fluvane
