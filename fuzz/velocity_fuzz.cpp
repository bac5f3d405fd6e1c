// Fuzz target: a velocity file, read as one of 2D or of 3D.
#include "dialogs/case_settings.h"
#include "one_input.h"
#include "velocity/velocity_file.h"
#include "velocity/velocity_set.h"

#include <cmath>

using namespace fluvane;

namespace {

void checkTable() {
    const std::int32_t Q = velocitySet.velocityCount;
    fuzz::expect(Q >= 1 && Q <= VelocitySet::capacity, "the velocities fit their table");
    for (std::size_t k = 0; k < static_cast<std::size_t>(Q); ++k) {
        fuzz::expect(velocitySet.opposite[k] >= 0 && velocitySet.opposite[k] <= Q, "an opposite is a line");
        fuzz::expect(std::isfinite(velocitySet.weights[k]), "a weight is a number");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    velocitySet = VelocitySet{};
    caseSettings.is3D = size % 2 == 1;
    if (readVelocityFile(fuzz::fileOf(data, size))) {
        fuzz::expect(fuzz::checkedProblems() <= 1, "what was read has at most one remark");
        checkTable();
    } else {
        fuzz::expect(fuzz::checkedProblems() == 1, "a refused file is refused in one line");
    }
    return 0;
}
