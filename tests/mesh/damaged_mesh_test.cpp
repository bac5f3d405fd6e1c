// Thousands of damaged meshes: each is read or refused, and none does harm.
#include "mesh/fluent_reader_2d.h"
#include "mesh/geometry_2d.h"
#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"

#include <cctype>
#include <omp.h>
#include <random>

namespace fluvane {

namespace {

class DamagedMeshTest : public CapturedTerminalTest {
protected:
    DamagedMeshTest() {
        velocitySet.velocityCount = 3;
        omp_set_num_threads(1); // tens of thousands of tiny meshes would only wait for threads
    }
    ~DamagedMeshTest() override { omp_set_num_threads(threadsBefore); }

    /// Reads the text and builds its geometry. Whether both succeeded; a refusal must leave an empty mesh and
    /// one line that names the file.
    bool survives(const std::string& text) const {
        const bool accepted = readMesh2D(write("damaged.msh", text)) && buildGeometry2D();
        const QStringList problems = takeProblems();
        if (accepted)
            return true;
        EXPECT_EQ(problems.size(), 1) << text;
        EXPECT_TRUE(problems.join("").contains("damaged.msh"));
        EXPECT_FALSE(problems.join("").contains('\n'));
        EXPECT_TRUE(mesh.pointCount == 0 && mesh.cellCount == 0 && mesh.totalFaceCount() == 0 &&
                    mesh.faces2D.empty() && mesh.cells2D.empty() && mesh.zoneNames.empty())
            << text;
        return false;
    }

    const int threadsBefore = omp_get_max_threads();
    const std::string good = GridMesh{3, 2}.text();
};

} // namespace

TEST_F(DamagedMeshTest, TheUndamagedMeshIsAccepted) {
    EXPECT_TRUE(survives(good));
    EXPECT_EQ(mesh.cellCount, 6);
}

TEST_F(DamagedMeshTest, EveryTruncationIsRefused) {
    const std::size_t complete = good.size() - 1; // only the last line feed may be missing
    for (std::size_t length = 0; length < complete; ++length)
        ASSERT_FALSE(survives(good.substr(0, length))) << length;
    EXPECT_TRUE(survives(good.substr(0, complete)));
}

TEST_F(DamagedMeshTest, DeletedRepeatedAndSwappedLinesDoNoHarm) {
    const std::vector<std::string> all = linesOf(good);
    int refused = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::vector<std::string> damaged = all;
        damaged.erase(damaged.begin() + static_cast<std::ptrdiff_t>(i));
        refused += survives(joined(damaged)) ? 0 : 1;
        damaged = all;
        damaged.insert(damaged.begin() + static_cast<std::ptrdiff_t>(i), all[i]);
        refused += survives(joined(damaged)) ? 0 : 1;
        damaged = all;
        std::swap(damaged[i], damaged[(i + 1) % all.size()]);
        refused += survives(joined(damaged)) ? 0 : 1;
    }
    EXPECT_GT(refused, static_cast<int>(all.size()));
}

TEST_F(DamagedMeshTest, ReplacedNumbersDoNoHarm) {
    const std::vector<std::string> junk = {
        "0", "1", "ffffffff", "ffffffffffffffffff", "7fffffff", "-1", "zz", "1e400", "A", ""};
    int refused = 0;
    int tried = 0;
    for (std::size_t first = 0; first < good.size();) {
        std::size_t last = first;
        while (last < good.size() && std::isalnum(static_cast<unsigned char>(good[last])))
            ++last;
        if (last > first) {
            for (const std::string& word : junk) {
                refused += survives(good.substr(0, first) + word + good.substr(last)) ? 0 : 1;
                ++tried;
            }
        }
        first = last + 1;
    }
    EXPECT_GT(tried, 2000);
    EXPECT_GT(refused, tried / 4);
}

TEST_F(DamagedMeshTest, FlippedBytesDoNoHarm) {
    std::mt19937 random(20240611);
    int refused = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string damaged = good;
        for (int flips = 1 + round % 4; flips > 0; --flips)
            damaged[random() % damaged.size()] = static_cast<char>(random() % 256);
        refused += survives(damaged) ? 0 : 1;
    }
    EXPECT_GT(refused, 1000);
}

TEST_F(DamagedMeshTest, DigitsExchangedForOtherDigitsDoNoHarm) {
    std::mt19937 random(7);
    int refused = 0;
    int accepted = 0;
    for (int round = 0; round < 6000; ++round) {
        std::string damaged = good;
        const std::size_t at = random() % damaged.size();
        if (!std::isxdigit(static_cast<unsigned char>(damaged[at])))
            continue;
        damaged[at] = "0123456789abcdef"[random() % 16];
        (survives(damaged) ? accepted : refused) += 1;
    }
    EXPECT_GT(refused, 500);
    EXPECT_GT(accepted, 100);
}

} // namespace fluvane
