// The least bytes that the loops of a step must move between memory and processor.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace fluvane {

/// How a loop writes rows that it has not read: an ordinary store makes the processor read the line first, a
/// store past the caches does not.
enum class RowStores { ordinary, pastCaches };

/// What one loop of a step moves, in bytes, when nothing is left in the caches from the loop before: every
/// number and every cache line of a record that the loop touches once. Only the gradients of flow and heat
/// are two passes over the mesh, each with the lists of neighbours. Boundary faces are counted as if every
/// condition needed the moments of face and cell.
struct LoopTraffic {
    const char* name = "";
    std::int64_t read = 0; ///< also lines of which only a part is written: they have to be there first
    std::int64_t written = 0;
    std::int64_t allocated = 0; ///< read for nothing but that whole rows are written by ordinary stores

    std::int64_t bytes(RowStores stores) const {
        return read + written + (stores == RowStores::ordinary ? allocated : 0);
    }
};

/// The loops of step2D() in their order, for the present mesh, velocity set and settings: collide, gradients,
/// reconstruct, boundary, recover, update. The geometry must have been built.
std::array<LoopTraffic, 6> stepTraffic2D();

/// The loops of step3D(): collide, gradients, reconstruct, boundary, update.
std::array<LoopTraffic, 5> stepTraffic3D();

/// The bytes of all the loops.
std::int64_t totalBytes(std::span<const LoopTraffic> loops, RowStores stores);

} // namespace fluvane
