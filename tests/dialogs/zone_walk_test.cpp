// Where a wizard stands among the boundary zones.
#include "dialogs/zone_walk.h"

#include "mesh/mesh.h"

#include <gtest/gtest.h>

namespace fluvane {
namespace {

class ZoneWalkTest : public testing::Test {
protected:
    void SetUp() override {
        mesh.clear();
        mesh.interiorFaceCount = 3;
        mesh.zoneCount = 3;
        mesh.zoneLastFace[0] = 5;
        mesh.zoneLastFace[1] = 6;
        mesh.zoneLastFace[2] = 9;
        mesh.zoneNames = {"left", "right", "top"};
    }
    void TearDown() override { mesh.clear(); }

    ZoneWalk walk;
};

TEST_F(ZoneWalkTest, TheFirstZoneBeginsAfterTheInteriorFaces) {
    EXPECT_EQ(walk.index(), 0);
    EXPECT_EQ(walk.firstFace(), 3);
    EXPECT_EQ(walk.endFace(), 5);
    EXPECT_EQ(walk.name(), "left");
    EXPECT_FALSE(walk.onLastZone());
}

TEST_F(ZoneWalkTest, LaterZonesBeginWhereTheOneBeforeEnds) {
    EXPECT_TRUE(walk.forward());
    EXPECT_EQ(walk.firstFace(), 5);
    EXPECT_EQ(walk.endFace(), 6);
    EXPECT_TRUE(walk.forward());
    EXPECT_EQ(walk.firstFace(), 6);
    EXPECT_EQ(walk.endFace(), 9);
    EXPECT_TRUE(walk.onLastZone());
}

TEST_F(ZoneWalkTest, GoingOnRestsOnTheLastZone) {
    walk.forward();
    walk.forward();
    EXPECT_FALSE(walk.forward());
    EXPECT_EQ(walk.index(), 2);
}

TEST_F(ZoneWalkTest, GoingBackRestsOnTheFirstZone) {
    walk.forward();
    walk.back();
    walk.back();
    EXPECT_EQ(walk.index(), 0);
}

TEST_F(ZoneWalkTest, ASmallerMeshPullsTheIndexBack) {
    walk.forward();
    walk.forward();
    mesh.zoneCount = 2;
    EXPECT_EQ(walk.index(), 1);
    EXPECT_TRUE(walk.onLastZone());
    EXPECT_EQ(walk.name(), "right");
    walk.back();
    EXPECT_EQ(walk.index(), 0);
}

TEST_F(ZoneWalkTest, WithoutZonesTheRangeIsEmptyAndTheNameToo) {
    mesh.zoneCount = 0;
    mesh.zoneNames.clear();
    EXPECT_EQ(walk.firstFace(), walk.endFace());
    EXPECT_TRUE(walk.onLastZone());
    EXPECT_FALSE(walk.forward());
    walk.back();
    EXPECT_EQ(walk.index(), 0);
    EXPECT_TRUE(walk.name().isEmpty());
}

TEST_F(ZoneWalkTest, AMissingNameIsEmpty) {
    mesh.zoneNames.resize(1);
    walk.forward();
    EXPECT_TRUE(walk.name().isEmpty());
}

} // namespace
} // namespace fluvane
