// A hand-made mesh of one quadrilateral and one triangle, and what the output tests need around it.
#pragma once

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "velocity/velocity_set.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace fluvane::testing {

/// The unit square with a triangle to its right; fields of both cells are all different.
inline void makeSmallMesh() {
    velocitySet.velocityCount = 9;
    mesh.pointCount = 5;
    mesh.pointX = {0.0, 1.0, 1.0, 0.0, 2.0};
    mesh.pointY = {0.0, 0.0, 1.0, 1.0, 0.1};
    mesh.allocateFaces2D(6);
    mesh.interiorFaceCount = 1;
    mesh.zoneCount = 2;
    mesh.zoneLastFace[0] = 4;
    mesh.zoneLastFace[1] = 6;
    mesh.zoneNames = {QStringLiteral("WALL"), QString::fromUtf8("Einlaß")};
    mesh.allocateCells2D(2);
    CellRecord& quad = mesh.cells2D[0];
    quad.nodeCount = 4;
    quad.nodes = {0, 3, 2, 1};
    quad.xc = quad.yc = 0.5;
    quad.rho = 1.5;
    quad.u = 0.25;
    quad.v = -0.125;
    quad.T = 0.75;
    quad.H = 0.3;
    CellRecord& triangle = mesh.cells2D[1];
    triangle.nodeCount = 3;
    triangle.nodes = {4, 1, 2, -1};
    triangle.xc = 4.0 / 3.0;
    triangle.yc = 1.1 / 3.0;
    triangle.rho = 1234567.0;
    triangle.u = 1.0 / 3.0;
    triangle.v = 1e-5;
    triangle.T = 0.1;
    triangle.H = 0.9;
}

inline QByteArray readFile(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// Start-up state before and after each test, and a folder of its own.
class OutputTest : public ::testing::Test {
protected:
    void SetUp() override {
        resetAll();
        ASSERT_TRUE(folder.isValid());
    }
    void TearDown() override { resetAll(); }
    QString inFolder(const QString& name) const { return folder.filePath(name); }

    QTemporaryDir folder;

private:
    static void resetAll() {
        caseSettings = CaseSettings{};
        velocitySet = VelocitySet{};
        mesh.clear();
    }
};

} // namespace fluvane::testing
