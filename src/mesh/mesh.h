// The one unstructured mesh of the process: points, faces, cells and boundary zones, and the solver state
// that lives in the records.
#pragma once

#include "mesh/huge_array.h"
#include "velocity/velocity_set.h"

#include <QString>
#include <array>
#include <cstdint>
#include <vector>

namespace fluvane {

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

/// A 2D face. All indices are 0-based; a cell index of -1 means no cell. Each group of fields up to a blank
/// line fills one cache line: what one loop of a step reads lies together.
struct alignas(64) FaceRecord {
    // Moments at the face midpoint at the half step; on a wall u, v, T hold what was assigned.
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
    double q = 0.0;  ///< wall heat flux of a constant-flux boundary
    double fl = 0.0; ///< wall liquid fraction; no kernel reads it

    double S1x = 0.0; ///< area vector pointing out of c1; not set on boundary faces
    double S1y = 0.0;
    std::int32_t n0 = -1; ///< end points in file order
    std::int32_t n1 = -1;
    double* fFace = nullptr; ///< Q distributions, a slice of the face pool
    double* gFace = nullptr;
};

/// A 2D cell with at most four faces and four nodes and at most 20 least-squares neighbours.
struct alignas(64) CellRecord {
    static constexpr std::int32_t maxFaces = 4;
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
    std::int32_t faceCount = 0;
    std::int32_t neighbourCount = 0;

    std::array<Vec2, 4> S{}; ///< outward area vector across faces[j]

    std::array<std::int32_t, 4> nodes{-1, -1, -1, -1}; ///< clockwise once the geometry is built
    std::int32_t nodeCount = 0;
    std::int32_t* neighbours =
        nullptr;                  ///< neighbourCount cell indices: face neighbours, then the second ring
    Vec2* lsq = nullptr;          ///< one least-squares weight pair a neighbour
    double* fTilde = nullptr;     ///< f - dt/2 Omega; Q entries each, slices of the cell pools
    double* fBarPlus = nullptr;   ///< f + dt/4 Omega
    double* fTildePlus = nullptr; ///< f + dt/2 Omega
    double* gTilde = nullptr;
    double* gBarPlus = nullptr;
    double* gTildePlus = nullptr;
    GradientSlice2D gradFBarPlus;
    GradientSlice2D gradGBarPlus;
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
    double* fFace = nullptr;
    double* gFace = nullptr;
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
    std::int32_t* neighbours = nullptr;
    Vec3* lsq = nullptr;
    double* fTilde = nullptr;
    double* fBarPlus = nullptr;
    double* fTildePlus = nullptr;
    double* gTilde = nullptr;
    double* gBarPlus = nullptr;
    double* gTildePlus = nullptr;
    GradientSlice3D gradFBarPlus;
    GradientSlice3D gradGBarPlus;
};

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
};

struct FacePools {
    HugeArray<double> fFace;
    HugeArray<double> gFace;
};

/// Where the face lines of one zone begin in the mesh file, for messages.
struct FaceLineStart {
    std::int32_t firstFace = 0; ///< 0-based
    std::int64_t firstLine = 0; ///< 1-based
};

/// One mesh at a time, of either dimension. Interior faces come first, then the boundary zones in ascending
/// contiguous ranges. Nothing here dangles: an emptied mesh has counts of zero and empty arrays.
class Mesh {
public:
    static constexpr std::int32_t maxZones = 100;

    std::int32_t pointCount = 0;
    std::vector<double> pointX;
    std::vector<double> pointY;
    std::vector<double> pointZ; ///< 3D only
    HugeArray<FaceRecord> faces2D;
    HugeArray<FaceRecord3D> faces3D;
    HugeArray<CellRecord> cells2D;
    HugeArray<CellRecord3D> cells3D;
    std::int32_t cellCount = 0;
    std::int32_t interiorFaceCount = 0;
    std::int32_t zoneCount = 0;                        ///< boundary zones
    std::array<std::int32_t, maxZones> zoneLastFace{}; ///< exclusive end of each zone's face range
    std::vector<QString> zoneNames;                    ///< one per boundary zone

    std::int32_t recordVelocityCount = 0;     ///< Q for which the records' arrays were made
    std::vector<std::int32_t> neighbourStart; ///< cellCount + 1 offsets into the two lists below
    HugeArray<std::int32_t> neighbourList;
    HugeArray<Vec2> lsqList2D;
    HugeArray<Vec3> lsqList3D;
    CellPools cellPools;
    FacePools facePools;
    QString sourceName;                        ///< the mesh file, for messages
    std::vector<FaceLineStart> faceLineStarts; ///< one per face zone, ascending

    /// Everything gone, as at start-up.
    void clear();

    /// The end of the last boundary zone; the number of interior faces when there is no boundary zone.
    std::int32_t totalFaceCount() const;

    /// The line of the mesh file that holds the face (0-based); 0 when it did not come from a file.
    std::int64_t faceLine(std::int32_t face) const;

    /// Creates the face records, their arrays sized for the velocity set as it stands.
    void allocateFaces2D(std::int32_t count);

    /// Creates `count` cell records and sets cellCount.
    void allocateCells2D(std::int32_t count);

    /// Creates the compact neighbour and weight lists and points the records' slices into them.
    /// `start` holds cellCount + 1 ascending offsets. The lists are zero until they are filled.
    void allocateNeighbours2D(std::vector<std::int32_t> start);

    /// The same for the records of a 3D mesh.
    void allocateFaces3D(std::int32_t count);
    void allocateCells3D(std::int32_t count);
    void allocateNeighbours3D(std::vector<std::int32_t> start);

    /// False when another velocity set was read after the mesh: the records' arrays have another size.
    bool matchesVelocitySet() const;
};

extern Mesh mesh;

} // namespace fluvane
