// Thousands of damaged meshes: each is read or refused, and none does harm.
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file_3d.h"

#include <cctype>
#include <omp.h>
#include <random>

namespace fluvane {

namespace {

/// What the readers of a dimension take, and how it is read.
struct Corpus {
    const char* name;
    std::string (*text)();
    bool (*read)(const QString&);
    bool (*build)();
    std::int32_t cells;
};

std::string squares() {
    return GridMesh{3, 2}.text();
}

std::string tetrahedra() {
    support::makeMesh(support::boxOfTetrahedra(2, 1, 1), 6, support::sidesOfBox3D({2, 1, 1}));
    return support::meshFileText3D().toStdString();
}

class DamagedMeshTest : public CapturedTerminalTest, public ::testing::WithParamInterface<Corpus> {
protected:
    DamagedMeshTest() {
        velocitySet.velocityCount = 3;
        omp_set_num_threads(1); // tens of thousands of tiny meshes would only wait for threads
        good = GetParam().text();
        takeProblems();
    }
    ~DamagedMeshTest() override { omp_set_num_threads(threadsBefore); }

    /// Reads the text and builds its geometry. Whether both succeeded; a refusal must be said in one line,
    /// and every complaint must name the file. Only a mesh refused for its cells' shapes is left for
    /// inspection.
    bool survives(const std::string& text) const {
        const bool wasRead = GetParam().read(write("damaged.msh", text));
        const qsizetype remarks = wasRead ? takeProblems().size() : 0;
        const bool accepted = wasRead && GetParam().build();
        const QStringList problems = takeProblems();
        EXPECT_LE(remarks, 1) << text;
        for (const QString& problem : problems)
            EXPECT_TRUE(problem.contains("damaged.msh") && !problem.contains('\n'));
        if (accepted)
            return true;
        EXPECT_EQ(problems.size(), 1) << text;
        EXPECT_TRUE(isEmpty() || problems.join("").contains("tetrahedra only")) << text;
        return false;
    }

    static bool isEmpty() {
        return mesh.pointCount == 0 && mesh.cellCount == 0 && mesh.totalFaceCount() == 0 &&
               mesh.faces2D.empty() && mesh.cells2D.empty() && mesh.faces3D.empty() && mesh.cells3D.empty() &&
               mesh.zoneNames.empty();
    }

    const int threadsBefore = omp_get_max_threads();
    std::string good;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Files, DamagedMeshTest,
                         ::testing::Values(Corpus{"Squares", squares, readMesh2D, buildGeometry2D, 6},
                                           Corpus{"Tetrahedra", tetrahedra, readMesh3D, buildGeometry3D, 10}),
                         [](const auto& corpus) { return std::string(corpus.param.name); });

TEST_P(DamagedMeshTest, TheUndamagedMeshIsAccepted) {
    EXPECT_TRUE(survives(good));
    EXPECT_EQ(mesh.cellCount, GetParam().cells);
}

TEST_P(DamagedMeshTest, EveryTruncationIsRefused) {
    const std::size_t complete = good.size() - 1; // only the last line feed may be missing
    for (std::size_t length = 0; length < complete; ++length)
        ASSERT_FALSE(survives(good.substr(0, length))) << length;
    EXPECT_TRUE(survives(good.substr(0, complete)));
}

TEST_P(DamagedMeshTest, DeletedRepeatedAndSwappedLinesDoNoHarm) {
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

TEST_P(DamagedMeshTest, ReplacedNumbersDoNoHarm) {
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

TEST_P(DamagedMeshTest, FlippedBytesDoNoHarm) {
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

TEST_P(DamagedMeshTest, DigitsExchangedForOtherDigitsDoNoHarm) {
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
