// Fuzz target: a 3D mesh file and its geometry.
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_3d.h"
#include "mesh_target.h"
#include "velocity/velocity_set.h"

using namespace fluvane;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::prepare();
    velocitySet.velocityCount = 3;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::tryMesh(data, size, readMesh3D, buildGeometry3D, true, [] {
        fuzz::checkIndices(mesh.cells3D, mesh.faces3D);
        fuzz::expect(minFaceArea3D() <= 10000.0, "the smallest area is at most where its search starts");
    });
    return 0;
}
