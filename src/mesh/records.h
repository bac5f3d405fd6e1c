// The records of the mesh: what each cell and face is, and the solver state that belongs to it.
#pragma once

#include "mesh/huge_array.h"
#include "mesh/record_fields.h"
#include "mesh/record_table.h"
#include "velocity/velocity_set.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fluvane {

template <>
inline constexpr bool isZeroBytes<Vec2> = true;
template <>
inline constexpr bool isZeroBytes<Vec3> = true;
template <std::size_t N>
inline constexpr bool isZeroBytes<std::array<std::int32_t, N>> = true;

/// One pool per kind of per-velocity cell array, cells in order, Q entries a cell (2Q or 3Q for gradients).
struct CellPools {
    HugeArray<double> fTilde;
    HugeArray<double> fBarPlus;
    HugeArray<double> fTildePlus;
    HugeArray<double> gTilde;
    HugeArray<double> gBarPlus;
    HugeArray<double> gTildePlus;
    HugeArray<double> gradFBarPlus;
    HugeArray<double> gradGBarPlus;

    std::size_t bytes() const {
        return fTilde.bytes() + fBarPlus.bytes() + fTildePlus.bytes() + gTilde.bytes() + gBarPlus.bytes() +
               gTildePlus.bytes() + gradFBarPlus.bytes() + gradGBarPlus.bytes();
    }
};

struct FacePools {
    HugeArray<double> fFace;
    HugeArray<double> gFace;

    std::size_t bytes() const { return fFace.bytes() + gFace.bytes(); }
};

// Where the record that holds the address finds what is not in the record.

template <class Record, class Pools, HugeArray<double> Pools::*pool, std::size_t rows, std::size_t row>
double* poolRow(const void* part);
template <class Record>
std::int32_t* neighboursOf(const void* part);
template <class Record, class Weight>
Weight* weightsOf(const void* part);
std::int32_t* nodesOfCell(const void* part);
double* liquidFractionOfWall(const void* part);
double* liquidFractionToSet(const void* part);
double secondAreaX(const void* part);
double secondAreaY(const void* part);

/// The record's row of Q entries in a pool; one of `rows` where a record has several.
template <class Record, HugeArray<double> CellPools::*pool, std::size_t rows = 1, std::size_t row = 0>
using CellRow = SliceField<double, &poolRow<Record, CellPools, pool, rows, row>>;
template <class Record, HugeArray<double> FacePools::*pool>
using FaceRow = SliceField<double, &poolRow<Record, FacePools, pool, 1, 0>>;

/// The x and y derivatives of a cell's distribution: all x, then all y, in one pool.
struct GradientSlice2D {
    struct Derivative {
        double& x;
        double& y;
    };
    double* x = nullptr;
    double* y = nullptr;
    Derivative operator[](std::size_t k) const { return {x[k], y[k]}; }
};

/// The same with a third component.
struct GradientSlice3D {
    struct Derivative {
        double& x;
        double& y;
        double& z;
    };
    double* x = nullptr;
    double* y = nullptr;
    double* z = nullptr;
    Derivative operator[](std::size_t k) const { return {x[k], y[k], z[k]}; }
};

/// The record's gradient rows.
template <class Record, HugeArray<double> CellPools::*pool>
struct GradientRows2D {
    [[no_unique_address]] CellRow<Record, pool, 2, 0> x;
    [[no_unique_address]] CellRow<Record, pool, 2, 1> y;
    operator GradientSlice2D() const { return {x, y}; }
    GradientSlice2D::Derivative operator[](std::size_t k) const { return {x[k], y[k]}; }
};
template <class Record, HugeArray<double> CellPools::*pool>
struct GradientRows3D {
    [[no_unique_address]] CellRow<Record, pool, 3, 0> x;
    [[no_unique_address]] CellRow<Record, pool, 3, 1> y;
    [[no_unique_address]] CellRow<Record, pool, 3, 2> z;
    operator GradientSlice3D() const { return {x, y, z}; }
    GradientSlice3D::Derivative operator[](std::size_t k) const { return {x[k], y[k], z[k]}; }
};

// All indices are 0-based; a cell index of -1 means no cell. A group of fields up to a blank line is one
// cache line, which a loop of a step reads as a whole. Members without an address of their own lie elsewhere
// in the mesh, and a record outside the mesh has none of those.

/// A 2D face. On a wall u, v, T hold what was assigned.
struct alignas(64) FaceRecord {
    // Moments at the face midpoint at the half step.
    double rho = 0.0;
    double u = 0.0;
    double v = 0.0;
    double T = 0.0;
    double H = 0.0;
    double Fx = 0.0;
    double Fy = 0.0;
    double length = 0.0;

    double xf = 0.0; ///< midpoint
    double yf = 0.0;
    double S0x = 0.0; ///< area vector pointing out of c0, as long as the face
    double S0y = 0.0;
    std::int32_t c0 = -1;
    std::int32_t c1 = -1; ///< -1 on a boundary face
    std::int32_t thermalKind = 0;
    std::int32_t flowKind = 0;
    double q = 0.0;       ///< wall heat flux of a constant-flux boundary
    std::int32_t n0 = -1; ///< end points in file order
    std::int32_t n1 = -1;

    /// Wall liquid fraction; no kernel reads it.
    [[no_unique_address]] ApartField<double, &liquidFractionOfWall, &liquidFractionToSet> fl;
    /// Area vector pointing out of c1, which keeps it; 0 on boundary faces.
    [[no_unique_address]] ComputedField<double, &secondAreaX> S1x;
    [[no_unique_address]] ComputedField<double, &secondAreaY> S1y;
    [[no_unique_address]] FaceRow<FaceRecord, &FacePools::fFace> fFace; ///< Q distributions
    [[no_unique_address]] FaceRow<FaceRecord, &FacePools::gFace> gFace;
};

/// A 2D cell with at most four faces and four nodes and at most 20 least-squares neighbours.
struct alignas(64) CellRecord {
    static constexpr std::int32_t maxFaces = 4;
    static constexpr std::int32_t maxNodes = 4;
    static constexpr std::int32_t maxNeighbours = 20;

    double rho = 1.0;
    double u = 0.0;
    double v = 0.0;
    double T = 0.0;
    double H = 0.0;
    double Fx = 0.0; ///< body force per unit mass
    double Fy = 0.0;
    double area = 0.0;

    double xc = 0.0; ///< centre: the mean of the nodes
    double yc = 0.0;
    double uPrev = 0.0; ///< before the last update
    double vPrev = 0.0;
    double TPrev = 0.0;
    std::array<std::int32_t, 4> faces{-1, -1, -1, -1}; ///< in the order they were attached
    std::int32_t neighbourCount = 0;
    std::int16_t faceCount = 0;
    std::int16_t nodeCount = 0;

    std::array<Vec2, 4> S{}; ///< outward area vector across faces[j]

    /// maxNodes point indices, -1 for those a triangle lacks; clockwise once the geometry is built.
    [[no_unique_address]] ArrayField<std::int32_t, maxNodes, &nodesOfCell> nodes;
    /// neighbourCount cell indices: face neighbours, then the second ring.
    [[no_unique_address]] SliceField<std::int32_t, &neighboursOf<CellRecord>> neighbours;
    /// One least-squares weight pair a neighbour.
    [[no_unique_address]] SliceField<Vec2, &weightsOf<CellRecord, Vec2>> lsq;

    [[no_unique_address]] CellRow<CellRecord, &CellPools::fTilde> fTilde; ///< f - dt/2 Omega; Q entries each
    [[no_unique_address]] CellRow<CellRecord, &CellPools::fBarPlus> fBarPlus;     ///< f + dt/4 Omega
    [[no_unique_address]] CellRow<CellRecord, &CellPools::fTildePlus> fTildePlus; ///< f + dt/2 Omega
    [[no_unique_address]] CellRow<CellRecord, &CellPools::gTilde> gTilde;
    [[no_unique_address]] CellRow<CellRecord, &CellPools::gBarPlus> gBarPlus;
    [[no_unique_address]] CellRow<CellRecord, &CellPools::gTildePlus> gTildePlus;
    [[no_unique_address]] GradientRows2D<CellRecord, &CellPools::gradFBarPlus> gradFBarPlus;
    [[no_unique_address]] GradientRows2D<CellRecord, &CellPools::gradGBarPlus> gradGBarPlus;
};

/// A 3D face: triangle or quadrilateral.
struct alignas(64) FaceRecord3D {
    double rho = 1.0;
    double u = 0.0;
    double v = 0.0;
    double w = 0.0;
    double T = 0.0;
    double Fx = 0.0;
    double Fy = 0.0;
    double Fz = 0.0;

    double xf = 0.0; ///< centre: the mean of the nodes
    double yf = 0.0;
    double zf = 0.0;
    double n0x = 0.0; ///< unit normal pointing out of c0
    double n0y = 0.0;
    double n0z = 0.0;
    double area = 0.0;
    std::int32_t c0 = -1;
    std::int32_t c1 = -1;

    double q = 0.0;
    std::int32_t thermalKind = 0;
    std::int32_t flowKind = 0;
    double n1x = 0.0; ///< unit normal pointing out of c1
    double n1y = 0.0;
    double n1z = 0.0;
    std::array<std::int32_t, 4> nodes{-1, -1, -1, -1};
    std::int32_t nodeCount = 0;

    [[no_unique_address]] FaceRow<FaceRecord3D, &FacePools::fFace> fFace;
    [[no_unique_address]] FaceRow<FaceRecord3D, &FacePools::gFace> gFace;
};

/// A 3D cell: a tetrahedron for the solver; at most six faces, eight nodes and 24 least-squares neighbours.
struct alignas(64) CellRecord3D {
    static constexpr std::int32_t maxFaces = 6;
    static constexpr std::int32_t maxNodes = 8;
    static constexpr std::int32_t maxNeighbours = 24;

    double rho = 1.0;
    double u = 0.0;
    double v = 0.0;
    double w = 0.0;
    double T = 0.0;
    double Fx = 0.0;
    double Fy = 0.0;
    double Fz = 0.0;

    double xc = 0.0;
    double yc = 0.0;
    double zc = 0.0;
    double volume = 0.0;
    double uPrev = 0.0;
    double vPrev = 0.0;
    double wPrev = 0.0;
    double TPrev = 0.0;

    std::array<Vec3, maxFaces> normals{}; ///< outward unit normal across faces[j]
    std::array<double, maxFaces> areas{}; ///< area of faces[j]
    std::array<std::int32_t, 6> faces{-1, -1, -1, -1, -1, -1};
    std::int32_t faceCount = 0;
    std::int32_t nodeCount = 0;
    std::int32_t neighbourCount = 0;
    std::array<std::int32_t, 8> nodes{-1, -1, -1, -1, -1, -1, -1, -1};
    double H = 0.0;

    [[no_unique_address]] SliceField<std::int32_t, &neighboursOf<CellRecord3D>> neighbours;
    [[no_unique_address]] SliceField<Vec3, &weightsOf<CellRecord3D, Vec3>> lsq;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::fTilde> fTilde;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::fBarPlus> fBarPlus;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::fTildePlus> fTildePlus;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::gTilde> gTilde;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::gBarPlus> gBarPlus;
    [[no_unique_address]] CellRow<CellRecord3D, &CellPools::gTildePlus> gTildePlus;
    [[no_unique_address]] GradientRows3D<CellRecord3D, &CellPools::gradFBarPlus> gradFBarPlus;
    [[no_unique_address]] GradientRows3D<CellRecord3D, &CellPools::gradGBarPlus> gradGBarPlus;
};

// A member above that took room would cost every cell.
static_assert(sizeof(FaceRecord) == 128 && sizeof(CellRecord) == 192);
static_assert(sizeof(FaceRecord3D) == 192 && sizeof(CellRecord3D) == 448);

} // namespace fluvane
