// Scaling and listing of the velocity set.
#include "velocity/lattice_properties.h"

#include "support/captured_terminal.h"

#include <QLocale>
#include <clocale>
#include <cmath>

namespace fluvane {

namespace {

class LatticePropertiesTest : public CapturedTerminalTest {
protected:
    LatticePropertiesTest() {
        velocitySet.velocityCount = 2;
        velocitySet.xi2D[1] = {1.0, -2.0};
        velocitySet.xi3D[1] = {1.0, -2.0, 3.0};
        velocitySet.xi2D[2] = {5.0, 5.0};
        velocitySet.weights[0] = 4.0 / 9.0;
        velocitySet.weights[1] = 1.0 / 9.0;
    }
};

} // namespace

TEST_F(LatticePropertiesTest, DefaultsOfTheDialogGiveTheSoundSpeedAndTheScale) {
    setLatticeProperties(0.4, 0.333333);
    EXPECT_EQ(caseSettings.CFL, 0.4);
    EXPECT_EQ(caseSettings.RT, 0.333333);
    EXPECT_EQ(caseSettings.soundSpeed, std::sqrt(0.333333));
    const double s = std::sqrt(3.0 * 0.333333);
    EXPECT_EQ(velocitySet.xi2D[1].x, s);
    EXPECT_EQ(velocitySet.xi2D[1].y, -2.0 * s);
}

// Deliberate: the table is scaled in place, so a second call scales it once more.
TEST_F(LatticePropertiesTest, SecondCallScalesOnceMore) {
    setLatticeProperties(0.4, 0.5);
    setLatticeProperties(0.4, 0.5);
    const double s = std::sqrt(1.5);
    EXPECT_EQ(velocitySet.xi2D[1].y, -2.0 * s * s);
}

TEST_F(LatticePropertiesTest, ScalesOnlyTheTableOfTheDimensionAndOnlyItsVelocities) {
    setLatticeProperties(0.4, 3.0);
    EXPECT_EQ(velocitySet.xi2D[1].x, 3.0);
    EXPECT_EQ(velocitySet.xi3D[1].z, 3.0);
    EXPECT_EQ(velocitySet.xi2D[2].x, 5.0);
    caseSettings.is3D = true;
    setLatticeProperties(0.4, 3.0);
    EXPECT_EQ(velocitySet.xi2D[1].x, 3.0);
    EXPECT_EQ(velocitySet.xi3D[1].x, 3.0);
    EXPECT_EQ(velocitySet.xi3D[1].y, -6.0);
    EXPECT_EQ(velocitySet.xi3D[1].z, 9.0);
}

TEST_F(LatticePropertiesTest, ZeroRTGivesZeroVelocities) {
    setLatticeProperties(0.0, 0.0);
    EXPECT_EQ(caseSettings.soundSpeed, 0.0);
    EXPECT_EQ(velocitySet.xi2D[1].x, 0.0);
}

TEST_F(LatticePropertiesTest, ListsA2DSetWithSixDigits) {
    velocitySet.xi2D[1] = {0.99999949, -1.0 / 3.0};
    EXPECT_EQ(velocityListing(), QStringList({"The discrete velocity information", "k=0   0  0  0.444444",
                                              "k=1   0.999999  -0.333333  0.111111"}));
}

// Deliberate: the third number of a 3D line is the x component again.
TEST_F(LatticePropertiesTest, ListsXAsTheThirdNumberIn3D) {
    caseSettings.is3D = true;
    EXPECT_EQ(velocityListing().at(2), QString("k=1   1  -2  1  0.111111"));
}

TEST_F(LatticePropertiesTest, ListsOnlyTheHeadingWithoutASet) {
    for (const int Q : {0, -1}) {
        velocitySet.velocityCount = Q;
        setLatticeProperties(0.4, 0.3);
        EXPECT_EQ(velocityListing(), QStringList{"The discrete velocity information"});
    }
}

TEST_F(LatticePropertiesTest, ListingDoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    QLocale::setDefault(QLocale(QLocale::German));
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_TRUE(velocityListing().at(1).endsWith("0.444444"));
    std::setlocale(LC_ALL, before.c_str());
    QLocale::setDefault(QLocale::c());
}

} // namespace fluvane
