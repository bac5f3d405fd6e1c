// Reading and refusing velocity files.
#include "velocity/velocity_file.h"

#include "support/captured_terminal.h"
#include "velocity/velocity_set.h"

#include <QDir>
#include <QFileInfo>
#include <clocale>

namespace fluvane {

namespace {

constexpr std::string_view d2q9 = "0 0 4 9 0\n"
                                  "1 0 1 9 3\n"
                                  "0 1 1 9 4\n"
                                  "-1 0 1 9 1\n"
                                  "0 -1 1 9 2\n"
                                  "1 1 1 36 7\n"
                                  "-1 1 1 36 8\n"
                                  "-1 -1 1 36 5\n"
                                  "1 -1 1 36 6\n";

std::string copies(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "1 0 1 9 0\n";
    return text;
}

class VelocityFileTest : public CapturedTerminalTest {
protected:
    bool read(std::string_view text) const { return readVelocityFile(write("set.2Dv", text)); }

    /// Expects a refusal of which the one line names the file and holds all `parts`, and nothing changed.
    void expectRefused(std::string_view text, std::initializer_list<const char*> parts) const {
        ASSERT_TRUE(read(d2q9));
        EXPECT_FALSE(read(text));
        const std::string problem = problems(1);
        EXPECT_NE(problem.find("set.2Dv"), std::string::npos) << problem;
        for (const char* part : parts)
            EXPECT_NE(problem.find(part), std::string::npos) << problem;
        EXPECT_EQ(velocitySet.velocityCount, 9);
        EXPECT_EQ(velocitySet.xi2D[8].y, -1.0);
        EXPECT_EQ(velocitySet.weights[0], 4.0 / 9.0);
    }
};

} // namespace

TEST_F(VelocityFileTest, ReadsComponentsWeightAndOpposite) {
    ASSERT_TRUE(read(d2q9));
    EXPECT_EQ(velocitySet.velocityCount, 9);
    EXPECT_EQ(velocitySet.xi2D[6].x, -1.0);
    EXPECT_EQ(velocitySet.xi2D[6].y, 1.0);
    EXPECT_EQ(velocitySet.weights[6], 1.0 / 36.0);
    EXPECT_EQ(velocitySet.opposite[6], 8);
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(VelocityFileTest, ReadsThreeComponentsInA3DCase) {
    caseSettings.is3D = true;
    ASSERT_TRUE(read("0 0 0 8 27 0\n1 2 -3 2 27 2\n-1 -2 3 2 27 1\n"));
    EXPECT_EQ(velocitySet.velocityCount, 3);
    EXPECT_EQ(velocitySet.xi3D[1].y, 2.0);
    EXPECT_EQ(velocitySet.xi3D[1].z, -3.0);
    EXPECT_EQ(velocitySet.weights[1], 2.0 / 27.0);
    EXPECT_EQ(velocitySet.opposite[2], 1);
}

// Deliberate: the count is one less than the number of lines tried.
TEST_F(VelocityFileTest, LastLineWithoutLineFeedIsNotCountedAndSaidSo) {
    ASSERT_TRUE(read(d2q9));
    EXPECT_EQ(velocitySet.velocityCount, 9);
    EXPECT_TRUE(velocitySet.hasAllOpposites());
    EXPECT_EQ(problems(0), "");
    ASSERT_TRUE(read(d2q9.substr(0, d2q9.size() - 1)));
    EXPECT_EQ(velocitySet.velocityCount, 8);
    EXPECT_EQ(velocitySet.opposite[6], 8); // as written
    EXPECT_FALSE(velocitySet.hasAllOpposites());
    const std::string problem = problems(1);
    EXPECT_NE(problem.find("line 9"), std::string::npos) << problem;
    EXPECT_NE(problem.find("8 velocities"), std::string::npos) << problem;
}

TEST_F(VelocityFileTest, OnlyTheLineThatDoesNotCountMayBeAnOppositeBeyondTheSet) {
    EXPECT_FALSE(read("0 0 4 9 0\n1 0 1 9 3\n-1 0 1 9 1"));
    EXPECT_NE(problems(1).find("from 0 to 2, found 3"), std::string::npos);
}

// Deliberate: an empty line adds a row that keeps what the table held and the weight of the row before it.
TEST_F(VelocityFileTest, EmptyLineAddsARowOfLeftoverValues) {
    ASSERT_TRUE(read("0 0 4 9 0\n1 0 1 9 2\n-1 7 1 9 1\n"));
    ASSERT_TRUE(read("0 0 1 2 0\n2 0 1 8 0\n\n"));
    EXPECT_EQ(velocitySet.velocityCount, 3);
    EXPECT_EQ(velocitySet.xi2D[1].x, 2.0);
    EXPECT_EQ(velocitySet.xi2D[2].x, -1.0);
    EXPECT_EQ(velocitySet.xi2D[2].y, 7.0);
    EXPECT_EQ(velocitySet.opposite[2], 1);
    EXPECT_EQ(velocitySet.weights[2], 1.0 / 8.0);
}

TEST_F(VelocityFileTest, LeftoverOppositeOutsideTheNewSetIsRefused) {
    ASSERT_TRUE(read(d2q9));
    EXPECT_FALSE(read("0 0 1 2 0\n\n")); // the second row still holds opposite 3
    EXPECT_NE(problems(1).find("line 2"), std::string::npos);
}

TEST_F(VelocityFileTest, EmptyFirstLineHasNoWeightAndIsRefused) {
    expectRefused("\n0 0 4 9 0\n", {"line 1", "b other than 0", "empty line"});
}

TEST_F(VelocityFileTest, CarriageReturnsAndOtherBlanksArePartOfNothing) {
    ASSERT_TRUE(read("0 0 4 9 0\r\n \t+1.5e0  0\t1 9 0 \r\n"));
    EXPECT_EQ(velocitySet.velocityCount, 2);
    EXPECT_EQ(velocitySet.xi2D[1].x, 1.5);
}

TEST_F(VelocityFileTest, NumbersDoNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "no locale with a decimal comma here";
    EXPECT_TRUE(read("0 0 4 9 0\n1.25 0 1 9 0\n"));
    EXPECT_EQ(velocitySet.xi2D[1].x, 1.25);
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(VelocityFileTest, ThirtyVelocitiesFit) {
    ASSERT_TRUE(read(copies(30)));
    EXPECT_EQ(velocitySet.velocityCount, 30);
}

TEST_F(VelocityFileTest, ThirtyOneVelocitiesAreRefused) {
    expectRefused(copies(31), {"line 31", "at most 30"});
}

TEST_F(VelocityFileTest, ZeroDenominatorIsRefused) {
    expectRefused("0 0 4 9 0\n1 0 1 0 0\n", {"line 2", "b other than 0", "b = 0"});
}

TEST_F(VelocityFileTest, OppositeOutsideTheSetIsRefused) {
    expectRefused("0 0 4 9 0\n1 0 1 9 2\n", {"line 2", "from 0 to 1", "found 2"});
    expectRefused("0 0 4 9 0\n1 0 1 9 -1\n", {"line 2", "found -1"});
    expectRefused("0 0 4 9 0\n1 0 1 9 0.5\n", {"line 2", "found 0.5"});
}

TEST_F(VelocityFileTest, RowsThatDoNotParseAreRefused) {
    expectRefused("0 0 4 9 0\nxi_x xi_y a b opp\n", {"line 2", "five numbers", "\"xi_x xi_y a b opp\""});
    expectRefused("0 0 4 9\n", {"line 1", "five numbers"});
    expectRefused("0 0 4 9 0\n1,5 0 1 9 0\n", {"line 2"});
    expectRefused("0 0 4 9 0\n1 nan 1 9 0\n", {"line 2"});
    expectRefused("0 0 4 9 0\n1 inf 1 9 0\n", {"line 2"});
    expectRefused("0 0 4 9 0\n1e999 0 1 9 0\n", {"line 2"});
}

TEST_F(VelocityFileTest, AFileOfTheOtherDimensionIsRefused) {
    expectRefused("0 0 0 8 27 0\n", {"line 1", "of 2D"});
    caseSettings.is3D = true;
    EXPECT_FALSE(read(d2q9));
    EXPECT_NE(problems(1).find("of 3D"), std::string::npos);
}

TEST_F(VelocityFileTest, FileWithoutAVelocityGivesCountZero) {
    for (const char* text : {"", "0 0 4 9 0"}) {
        ASSERT_TRUE(read(d2q9));
        EXPECT_FALSE(read(text));
        EXPECT_EQ(velocitySet.velocityCount, 0);
        EXPECT_NE(problems(1).find("set.2Dv"), std::string::npos);
    }
}

TEST_F(VelocityFileTest, FileThatCannotBeOpenedGivesCountMinusOneAndIsNotCreated) {
    EXPECT_FALSE(readVelocityFile(pathOf("absent.2Dv")));
    EXPECT_EQ(velocitySet.velocityCount, -1);
    EXPECT_NE(problems(1).find("absent.2Dv"), std::string::npos);
    EXPECT_FALSE(QFileInfo::exists(pathOf("absent.2Dv")));

    velocitySet.velocityCount = 9;
    EXPECT_FALSE(readVelocityFile(folder.path()));
    EXPECT_EQ(velocitySet.velocityCount, -1);
    problems(1);
}

TEST_F(VelocityFileTest, WriteProtectedFileCannotBeRead) {
    const QString path = write("set.2Dv", d2q9);
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    QFile probe(path);
    if (probe.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        GTEST_SKIP() << "this user may write to protected files";
    EXPECT_FALSE(readVelocityFile(path));
    EXPECT_EQ(velocitySet.velocityCount, -1);
}

TEST_F(VelocityFileTest, BinaryJunkIsShownOnOneLine) {
    ASSERT_TRUE(read(d2q9));
    std::string junk(200, '\x01');
    junk[3] = '\0';
    EXPECT_FALSE(read(junk + "\r\r\n"));
    const std::string problem = problems(1);
    EXPECT_EQ(problem.find('\n'), std::string::npos);
    EXPECT_EQ(problem.find('\x01'), std::string::npos);
    EXPECT_LT(problem.size(), 400U);
}

} // namespace fluvane
