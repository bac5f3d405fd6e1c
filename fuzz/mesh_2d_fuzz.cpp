// Fuzz target: a 2D mesh file and its geometry.
#include "mesh/fluent_reader_2d.h"
#include "mesh/geometry_2d.h"
#include "mesh_target.h"
#include "velocity/velocity_set.h"

using namespace fluvane;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::prepare();
    velocitySet.velocityCount = 3;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::tryMesh(data, size, readMesh2D, buildGeometry2D, false, [] {
        fuzz::checkIndices(mesh.cells2D, mesh.faces2D);
        fuzz::expect(minFaceLength2D() <= 10000.0, "the smallest length is at most where its search starts");
    });
    return 0;
}
