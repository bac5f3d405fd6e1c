// Storing the records in another order than their numbers: nothing that anybody sees depends on it.
#include "mesh/storage_order.h"

#include "dialogs/case_settings.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "setup/initial_fields.h"
#include "solver2d/cell_kernels.h"
#include "solver2d/enthalpy.h"
#include "solver2d/face_kernels.h"
#include "solver2d/time_step.h"
#include "solver3d/time_step.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/random_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <omp.h>
#include <random>
#include <vector>

namespace fluvane {

namespace {

using Values = std::vector<double>;

void add(Values& all, const double* row, std::size_t count) {
    all.insert(all.end(), row, row + count);
}

template <class Cell>
void addRows(Values& all, const Cell& c) {
    const auto Q = static_cast<std::size_t>(mesh.recordVelocityCount);
    for (const double* row : {c.fTilde.data(), c.fBarPlus.data(), c.fTildePlus.data(), c.gTilde.data(),
                              c.gBarPlus.data(), c.gTildePlus.data()})
        add(all, row, Q);
    for (std::size_t k = 0; k < Q; ++k)
        all.insert(all.end(),
                   {c.gradFBarPlus[k].x, c.gradFBarPlus[k].y, c.gradGBarPlus[k].x, c.gradGBarPlus[k].y});
}

template <class Cell>
void addConnections(Values& all, const Cell& c) {
    all.insert(all.end(), {double(c.faceCount), double(c.nodeCount), double(c.neighbourCount)});
    all.insert(all.end(), c.faces.begin(), c.faces.end());
    all.insert(all.end(), c.nodes.begin(), c.nodes.end());
    for (std::int32_t j = 0; j < c.neighbourCount; ++j)
        all.insert(all.end(), {double(c.neighbours[j]), c.lsq[j].x, c.lsq[j].y});
}

/// All that belongs to the cells and faces, by number.
Values everything2D() {
    const auto Q = static_cast<std::size_t>(mesh.recordVelocityCount);
    Values all;
    for (std::size_t i = 0; i < mesh.cells2D.size(); ++i) {
        const CellRecord& c = mesh.cells2D[i];
        all.insert(all.end(), {c.rho, c.u, c.v, c.T, c.H, c.Fx, c.Fy, c.uPrev, c.vPrev, c.TPrev});
        all.insert(all.end(), {c.area, c.xc, c.yc});
        for (const Vec2& S : c.S)
            all.insert(all.end(), {S.x, S.y});
        addConnections(all, c);
        addRows(all, c);
    }
    for (std::size_t i = 0; i < mesh.faces2D.size(); ++i) {
        const FaceRecord& f = mesh.faces2D[i];
        all.insert(all.end(), {f.rho, f.u, f.v, f.T, f.H, f.Fx, f.Fy, f.q, f.fl, f.xf, f.yf, f.length});
        all.insert(all.end(), {f.S0x, f.S0y, f.S1x, f.S1y, double(f.c0), double(f.c1), double(f.n0)});
        all.insert(all.end(), {double(f.n1), double(f.thermalKind), double(f.flowKind)});
        add(all, f.fFace, Q);
        add(all, f.gFace, Q);
    }
    return all;
}

Values everything3D() {
    const auto Q = static_cast<std::size_t>(mesh.recordVelocityCount);
    Values all;
    for (std::size_t i = 0; i < mesh.cells3D.size(); ++i) {
        const CellRecord3D& c = mesh.cells3D[i];
        all.insert(all.end(), {c.rho, c.u, c.v, c.w, c.T, c.H, c.Fx, c.Fy, c.Fz, c.uPrev, c.vPrev, c.wPrev});
        all.insert(all.end(), {c.TPrev, c.volume, c.xc, c.yc, c.zc});
        all.insert(all.end(), c.areas.begin(), c.areas.end());
        for (const Vec3& n : c.normals)
            all.insert(all.end(), {n.x, n.y, n.z});
        addConnections(all, c);
        addRows(all, c);
        for (std::size_t k = 0; k < Q; ++k)
            all.insert(all.end(), {c.gradFBarPlus[k].z, c.gradGBarPlus[k].z});
    }
    for (std::size_t i = 0; i < mesh.faces3D.size(); ++i) {
        const FaceRecord3D& f = mesh.faces3D[i];
        all.insert(all.end(), {f.rho, f.u, f.v, f.w, f.T, f.Fx, f.Fy, f.Fz, f.q, f.xf, f.yf, f.zf, f.area});
        all.insert(all.end(), {f.n0x, f.n0y, f.n0z, f.n1x, f.n1y, f.n1z, double(f.c0), double(f.c1)});
        all.insert(all.end(), f.nodes.begin(), f.nodes.end());
        add(all, f.fFace, Q);
        add(all, f.gFace, Q);
    }
    return all;
}

void switchEverythingOn(double dt) {
    support::usePlainSettings(dt);
    setPhaseChange(0.8, 0.4, 0.5, 0.0);
    caseSettings.flowOn = 1;
    caseSettings.heatOn = true;
    caseSettings.buoyancyOn = true;
}

/// Outflow, constant temperature and constant flux in turn along the boundary.
template <class Faces>
void setWalls(Faces& faces) {
    for (auto i = static_cast<std::size_t>(mesh.interiorFaceCount); i < faces.size(); ++i) {
        faces[i].thermalKind = static_cast<std::int32_t>(i % 3);
        faces[i].flowKind = i % 5 == 0 ? 2 : 0;
    }
}

support::PlaneCells shuffledPlane(int n) {
    support::PlaneCells plane = support::cutRectangles(n, n);
    const support::PlaneCells squares = support::rectangles(n, n);
    // The upper half stays whole: triangles and quadrilaterals side by side.
    const auto half = static_cast<std::ptrdiff_t>(squares.cells.size() / 2);
    plane.cells.resize(plane.cells.size() / 2);
    plane.cells.insert(plane.cells.end(), squares.cells.begin() + half, squares.cells.end());
    support::distort(plane, 0.05);
    support::shuffleCells(plane, 5);
    return plane;
}

/// Steps from a noisy state on shuffled cells.
Values after2D(Storage storage, int threads, int thermalMode) {
    omp_set_num_threads(threads);
    support::resetProcessState();
    support::useD2Q9();
    support::makeMesh(shuffledPlane(12), 4, support::sidesOfBox());
    EXPECT_TRUE(buildGeometry2D(storage));
    EXPECT_EQ(mesh.cells2D.order().asNumbered(), storage == Storage::asNumbered);
    switchEverythingOn(0.003);
    caseSettings.thermalMode = thermalMode;
    support::fillRandomState(3);
    setWalls(mesh.faces2D);
    for (int n = 0; n < 3; ++n)
        step2D();
    return everything2D();
}

Values after3D(Storage storage, int threads) {
    omp_set_num_threads(threads);
    support::resetProcessState();
    support::useD3Q19();
    support::Tetrahedra box = support::boxOfTetrahedra(4, 4, 3);
    support::distort(box, {4.0, 4.0, 3.0}, 0.15);
    support::shuffleCells(box, 2);
    support::makeMesh(box, 6, support::sidesOfBox3D({4.0, 4.0, 3.0}));
    EXPECT_TRUE(buildGeometry3D(storage));
    EXPECT_EQ(mesh.cells3D.order().asNumbered(), storage == Storage::asNumbered);
    switchEverythingOn(0.02);
    support::fillRandomState(3);
    setWalls(mesh.faces3D);
    for (int n = 0; n < 3; ++n)
        step3D();
    return everything3D();
}

/// The mean distance of a cell's slot from those of its neighbours.
double meanJump() {
    const StorageOrder& order = mesh.cells2D.order();
    double sum = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < mesh.cells2D.size(); ++i) {
        const CellRecord& cell = mesh.cells2D[i];
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j, ++count)
            sum += std::abs(double(order.slot(i)) -
                            double(order.slot(static_cast<std::size_t>(cell.neighbours[j]))));
    }
    return sum / count;
}

/// Whether the curve through all points of a cube of 2^bits per side goes from neighbour to neighbour.
template <std::size_t D>
void expectUnbrokenCurve(int bits) {
    const std::uint32_t side = std::uint32_t{1} << bits;
    const int shift = curveBits(D) - bits;
    std::vector<std::pair<std::uint64_t, CurvePoint<D>>> points;
    CurvePoint<D> p{};
    while (p[D - 1] < side) {
        CurvePoint<D> scaled = p;
        for (std::uint32_t& x : scaled)
            x <<= shift;
        points.push_back({alongCurve(scaled), p});
        for (std::size_t k = 0; k < D && (k == 0 || p[k - 1] == 0); ++k)
            p[k] = p[k] + 1 == side && k + 1 < D ? 0 : p[k] + 1;
    }
    std::sort(points.begin(), points.end());
    for (std::size_t i = 1; i < points.size(); ++i) {
        std::int64_t step = 0;
        for (std::size_t k = 0; k < D; ++k)
            step += std::abs(std::int64_t{points[i].second[k]} - std::int64_t{points[i - 1].second[k]});
        ASSERT_EQ(step, 1) << i;
        ASSERT_NE(points[i].first, points[i - 1].first);
    }
}

class StorageOrderTest : public ::testing::Test {
protected:
    void SetUp() override { m_threads = omp_get_max_threads(); }
    void TearDown() override {
        omp_set_num_threads(m_threads);
        support::resetProcessState();
    }

    static void makePlane(const support::PlaneCells& plane) {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(plane, 4, support::sidesOfBox());
    }

private:
    int m_threads = 1;
};

} // namespace

TEST_F(StorageOrderTest, StepsIn2DAreBitForBitThoseOfUnorderedStorage) {
    for (const int thermalMode : {0, 1}) {
        const Values plain = after2D(Storage::asNumbered, 1, thermalMode);
        for (const int threads : {1, 2, 5})
            EXPECT_TRUE(plain == after2D(Storage::alongCurve, threads, thermalMode)) << threads;
        EXPECT_TRUE(plain == after2D(Storage::asNumbered, 3, thermalMode));
    }
}

TEST_F(StorageOrderTest, StepsIn3DAreBitForBitThoseOfUnorderedStorage) {
    const Values plain = after3D(Storage::asNumbered, 1);
    for (const int threads : {1, 2, 5})
        EXPECT_TRUE(plain == after3D(Storage::alongCurve, threads)) << threads;
}

TEST_F(StorageOrderTest, KernelsOnOneRecordTakeItWhereItLies) {
    const auto faceAfterwards = [](Storage storage) {
        makePlane(shuffledPlane(6));
        buildGeometry2D(storage);
        switchEverythingOn(0.003);
        support::fillRandomState(3);
        step2D();
        mesh.cells2D[5].fBarPlus[7] += 0.25;
        FaceRecord& face = mesh.faces2D[17];
        reconstructInteriorFace(face);
        mesh.cells2D[9].rho = 1.5;
        collideCell(mesh.cells2D[9]);
        return Values{
            face.rho, face.u, face.v, face.T, face.gFace[3], face.fFace[7], mesh.cells2D[9].fBarPlus[2]};
    };
    EXPECT_EQ(faceAfterwards(Storage::asNumbered), faceAfterwards(Storage::alongCurve));
}

TEST_F(StorageOrderTest, GoodNumberingIsKept) {
    for (const bool triangles : {false, true}) {
        makePlane(triangles ? support::cutRectangles(150, 100) : support::rectangles(150, 100));
        EXPECT_TRUE(mesh.cells2D.order().asNumbered());
        EXPECT_TRUE(mesh.faces2D.order().asNumbered());
        EXPECT_TRUE(mesh.neighbourSlots.empty());
        EXPECT_TRUE(mesh.faceCellSlots.empty());
        EXPECT_TRUE(mesh.cellFaceSlots2D.empty());
    }
}

TEST_F(StorageOrderTest, BadNumberingIsStoredAlongACurve) {
    support::PlaneCells plane = support::rectangles(150, 100);
    makePlane(plane);
    const double rows = meanJump();
    support::shuffleCells(plane, 1);
    makePlane(plane);
    EXPECT_FALSE(mesh.cells2D.order().asNumbered());
    EXPECT_LT(meanJump(), 2.0 * rows);
    buildGeometry2D(Storage::asNumbered);
    EXPECT_GT(meanJump(), 30.0 * rows);
}

TEST_F(StorageOrderTest, SmallMeshesFitTheCacheInAnyOrder) {
    support::PlaneCells plane = support::rectangles(16, 16);
    support::shuffleCells(plane, 1);
    makePlane(plane);
    EXPECT_TRUE(mesh.cells2D.order().asNumbered());
}

TEST_F(StorageOrderTest, LargeMeshesAreJudgedBySpans) {
    support::PlaneCells plane = support::rectangles(300, 300);
    makePlane(plane);
    EXPECT_TRUE(mesh.cells2D.order().asNumbered());
    EXPECT_TRUE(mesh.faces2D.order().asNumbered());
    support::shuffleCells(plane, 1);
    makePlane(plane);
    EXPECT_FALSE(mesh.cells2D.order().asNumbered());
}

TEST_F(StorageOrderTest, FacesAloneMayBeOrdered) {
    support::PlaneCells plane = support::rectangles(150, 100);
    makePlane(plane);
    const auto inner = static_cast<std::size_t>(mesh.interiorFaceCount);
    std::vector<std::size_t> from(inner);
    std::iota(from.begin(), from.end(), std::size_t{0});
    std::mt19937 generator(1);
    std::shuffle(from.begin(), from.end(), generator);
    RecordTable<FaceRecord> faces(mesh.faces2D.size());
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const std::size_t source = i < inner ? from[i] : i;
        faces[i].c0 = mesh.faces2D[source].c0;
        faces[i].c1 = mesh.faces2D[source].c1;
        faces[i].n0 = mesh.faces2D[source].n0;
        faces[i].n1 = mesh.faces2D[source].n1;
    }
    mesh.faces2D = std::move(faces);
    const auto stepped = [](Storage storage) {
        buildGeometry2D(storage);
        switchEverythingOn(0.001);
        support::fillRandomState(3);
        step2D();
        return everything2D();
    };
    const Values ordered = stepped(Storage::automatic);
    EXPECT_TRUE(mesh.cells2D.order().asNumbered());
    EXPECT_FALSE(mesh.faces2D.order().asNumbered());
    EXPECT_TRUE(ordered == stepped(Storage::asNumbered));
}

TEST_F(StorageOrderTest, MovedFacesKeepWhatTheyHadAndMoveBack) {
    makePlane(shuffledPlane(8));
    support::fillRandomState(7);
    setWalls(mesh.faces2D);
    for (auto i = static_cast<std::size_t>(mesh.interiorFaceCount); i < mesh.faces2D.size(); ++i)
        mesh.faces2D[i].fl = 0.25 * double(i);
    const auto faceValues = [] {
        Values all;
        for (const FaceRecord& f : mesh.faces2D)
            all.insert(all.end(), {f.u, f.T, f.q, f.fl, double(f.thermalKind), double(f.n0), double(f.n1),
                                   double(f.c0), double(f.c1)});
        return all;
    };
    const Values before = faceValues();
    ASSERT_TRUE(buildGeometry2D(Storage::alongCurve));
    EXPECT_EQ(faceValues(), before);
    ASSERT_TRUE(buildGeometry2D(Storage::asNumbered));
    EXPECT_TRUE(mesh.faces2D.order().asNumbered());
    EXPECT_EQ(faceValues(), before);
}

TEST_F(StorageOrderTest, BoundaryFacesStayBehindTheInteriorOnesAtTheirNumbers) {
    makePlane(shuffledPlane(8));
    ASSERT_TRUE(buildGeometry2D(Storage::alongCurve));
    const StorageOrder& order = mesh.faces2D.order();
    std::vector<std::int32_t> slots = order.slotOf;
    for (auto i = static_cast<std::size_t>(mesh.interiorFaceCount); i < slots.size(); ++i)
        EXPECT_EQ(order.slot(i), i);
    std::sort(slots.begin(), slots.end());
    for (std::size_t i = 0; i < slots.size(); ++i)
        EXPECT_EQ(slots[i], static_cast<std::int32_t>(i));
}

TEST_F(StorageOrderTest, CurveGoesFromNeighbourToNeighbour) {
    expectUnbrokenCurve<2>(5);
    expectUnbrokenCurve<3>(4);
}

TEST_F(StorageOrderTest, EqualKeysKeepTheOrderOfTheirNumbers) {
    const StorageOrder order = orderByKey({7, 3, 7, 3});
    EXPECT_EQ(order.numberAt, (std::vector<std::int32_t>{1, 3, 0, 2}));
    EXPECT_EQ(order.slotOf, (std::vector<std::int32_t>{2, 0, 3, 1}));
}

TEST_F(StorageOrderTest, CentresOnOneSpotOrLineAreNoTrouble) {
    HugeArray<Vec2> spot(5);
    EXPECT_EQ(orderAlongCurve(spot).numberAt, (std::vector<std::int32_t>{0, 1, 2, 3, 4}));
    HugeArray<Vec3> line(4);
    for (std::size_t i = 0; i < 4; ++i)
        line[i].y = -double(i);
    const StorageOrder order = orderAlongCurve(line);
    std::vector<std::int32_t> slots = order.slotOf;
    std::sort(slots.begin(), slots.end());
    EXPECT_EQ(slots, (std::vector<std::int32_t>{0, 1, 2, 3}));
}

TEST_F(StorageOrderTest, AShortWalkIsTakenWholeALongOneInSpans) {
    for (const std::int64_t count : {0, 1, 5000, 65536, 65537, 1000000}) {
        std::vector<std::int32_t> steps;
        const std::int64_t taken = sampleWalk(count, [&](std::int32_t i) { steps.push_back(i); });
        EXPECT_EQ(taken, static_cast<std::int64_t>(steps.size()));
        EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
        EXPECT_EQ(std::adjacent_find(steps.begin(), steps.end()), steps.end());
        if (count <= 65536)
            EXPECT_EQ(taken, count);
        else
            EXPECT_NEAR(static_cast<double>(taken), static_cast<double>(count) / 8.0, 4096.0);
        if (count > 0) {
            EXPECT_EQ(steps.front(), 0);
            EXPECT_LT(steps.back(), count);
            EXPECT_GE(steps.back(), count - 8 * 4096);
        }
    }
}

TEST_F(StorageOrderTest, TouchesLastForAWhileAndForThingsClose) {
    TouchCounter counter(1000);
    counter.touch(100, 0);
    EXPECT_EQ(counter.missed(), 1);
    counter.touch(101, 0); // lies together with 100
    counter.touch(100, TouchCounter::lasting - 1);
    EXPECT_EQ(counter.missed(), 1);
    counter.touch(500, TouchCounter::lasting);
    counter.touch(100, 2 * TouchCounter::lasting);
    EXPECT_EQ(counter.missed(), 3);
}

} // namespace fluvane
