// Where kernels find the rows of a record and the records that it names.
#pragma once

#include "solver2d/row.h"
#include "solver2d/step_constants.h"
#include "solver2d/step_data.h"

namespace fluvane::FLUVANE_ISA {

/// Q as a pool stride: known at compile time, or the velocity set's.
template <int Q>
FLUVANE_FORCE_INLINE std::ptrdiff_t stride(const StepConstants& c) {
    return Q > 0 ? Q : c.velocityCount;
}

// A record names others by number; where the mesh is stored in another order, compact lists say where those
// lie.

struct Sides {
    std::ptrdiff_t c0;
    std::ptrdiff_t c1;
};

/// Where the two cells of a face lie.
template <class Data>
FLUVANE_FORCE_INLINE Sides sidesOf(const Data& d, const typename Data::FaceType& face) {
    if (!d.faceCells)
        return {face.c0, face.c1};
    const auto& cells = d.faceCells[&face - d.faces];
    return {cells[0], cells[1]};
}

/// Where the faces of a cell lie.
template <class Data>
FLUVANE_FORCE_INLINE const std::int32_t* facesOf(const Data& d, const typename Data::CellType& cell) {
    return d.cellFaces ? d.cellFaces[&cell - d.cells].data() : cell.faces.data();
}

} // namespace fluvane::FLUVANE_ISA
