// The one unstructured mesh of the process: points, faces, cells and boundary zones, and the solver state
// that lives in the records.
#pragma once

#include "mesh/huge_array.h"
#include "mesh/record_table.h"
#include "mesh/records.h"
#include "velocity/velocity_set.h"

#include <QString>
#include <array>
#include <cstdint>
#include <vector>

namespace fluvane {

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
    RecordTable<FaceRecord> faces2D;
    RecordTable<FaceRecord3D> faces3D;
    RecordTable<CellRecord> cells2D;
    RecordTable<CellRecord3D> cells3D;
    std::int32_t cellCount = 0;
    std::int32_t interiorFaceCount = 0;
    std::int32_t zoneCount = 0;                        ///< boundary zones
    std::array<std::int32_t, maxZones> zoneLastFace{}; ///< exclusive end of each zone's face range
    std::vector<QString> zoneNames;                    ///< one per boundary zone

    std::int32_t recordVelocityCount = 0;     ///< Q for which the records' arrays were made
    std::vector<std::int32_t> neighbourStart; ///< cellCount + 1 offsets into the lists, cells as they lie
    HugeArray<std::int32_t> neighbourList;    ///< cell numbers
    HugeArray<Vec2> lsqList2D;
    HugeArray<Vec3> lsqList3D;
    HugeArray<std::int32_t> cellNodes2D;   ///< maxNodes a cell, cells as they lie
    HugeArray<double> wallLiquidFractions; ///< of boundary faces in 2D, which lie at their numbers
    CellPools cellPools;
    FacePools facePools;

    // Where the records lie that others name by number; empty when every record lies at its number.
    HugeArray<std::int32_t> neighbourSlots;
    HugeArray<std::array<std::int32_t, 2>> faceCellSlots;
    HugeArray<std::array<std::int32_t, CellRecord::maxFaces>> cellFaceSlots2D;
    HugeArray<std::array<std::int32_t, CellRecord3D::maxFaces>> cellFaceSlots3D;

    QString sourceName;                        ///< the mesh file, for messages
    std::vector<FaceLineStart> faceLineStarts; ///< one per face zone, ascending

    /// Everything gone, as at start-up.
    void clear();

    /// The end of the last boundary zone; the number of interior faces when there is no boundary zone.
    std::int32_t totalFaceCount() const;

    /// The line of the mesh file that holds the face (0-based); 0 when it did not come from a file.
    std::int64_t faceLine(std::int32_t face) const;

    /// Creates the face records, their arrays sized for the velocity set as it stands. All records lie at
    /// their numbers.
    void allocateFaces2D(std::int32_t count);

    /// Creates `count` cell records, stored in the given order, and sets cellCount.
    void allocateCells2D(std::int32_t count, StorageOrder order = {});

    /// Takes the compact neighbour list, of which the records hold slices, and creates that of the weights,
    /// which are zero. `start` holds cellCount + 1 ascending offsets, the last of which is the length of the
    /// list. How many neighbours a record has, whoever fills the record says.
    void setNeighbours2D(std::vector<std::int32_t> start, HugeArray<std::int32_t> list);

    /// The same for the records of a 3D mesh.
    void allocateFaces3D(std::int32_t count);
    void allocateCells3D(std::int32_t count, StorageOrder order = {});
    void setNeighbours3D(std::vector<std::int32_t> start, HugeArray<std::int32_t> list);

    /// False when another velocity set was read after the mesh: the records' arrays have another size.
    bool matchesVelocitySet() const;

    /// Bytes of points, records, lists and pools when all of it is in use. Pools of a form that is off take
    /// no memory: nothing touches their pages.
    std::size_t bytes() const;
};

extern Mesh mesh;

} // namespace fluvane

#include "mesh/record_access.h"
