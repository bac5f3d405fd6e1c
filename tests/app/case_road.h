// Leads a case through the windows as a user does: opening, set-up, walls, computing; and reads its files.
#pragma once

#include "quad_mesh_file.h"
#include "shell_fixture.h"

#include <QComboBox>
#include <QLineEdit>
#include <algorithm>

namespace road {

inline void type(QWidget* dialog, const char* field, const QString& text) {
    dialog->findChild<QLineEdit*>(QString::fromLatin1(field))->setText(text);
}

inline void pick(QWidget* dialog, const char* list, int index) {
    dialog->findChild<QComboBox*>(QString::fromLatin1(list))->setCurrentIndex(index);
}

inline QList<QByteArray> linesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    lines.removeLast();
    return lines;
}

/// Lines of a 2D result file before its first value.
constexpr int headLines = 11;

/// Does the file hold one whole 2D result: head, all values, all quadrilaterals, CR LF?
inline bool isWholeResult(const QString& path, int points, int cells) {
    const QList<QByteArray> lines = linesOf(path);
    if (lines.size() != headLines + 2 * points + 6 * cells + cells)
        return false;
    if (lines[8] != "ZONE N=" + QByteArray::number(points) + ", E=" + QByteArray::number(cells) +
                        ", ZONETYPE = FEQUADRILATERAL\r")
        return false;
    const auto isNumber = [](const QByteArray& line) {
        bool ok = false;
        line.trimmed().toDouble(&ok);
        return ok && line.endsWith('\r');
    };
    const int values = headLines + 2 * points + 6 * cells;
    return std::all_of(lines.begin() + headLines, lines.begin() + values, isNumber) &&
           std::all_of(lines.begin() + values, lines.end(),
                       [](const QByteArray& line) { return line.simplified().split(' ').size() == 4; });
}

/// File, Open, 2D, with the nine-velocity file and the mesh.
inline void open(Shell& shell, const QuadMesh& mesh) {
    QVERIFY(writeText(shell.path("nine.2Dv"), velocityLines));
    QuadMeshFile file(mesh);
    QVERIFY(file.write(shell.path("case.msh")));
    shell.answers.names = QStringList{shell.path("nine.2Dv"), shell.path("case.msh")};
    shell.choose("actionOpen");
    Shell::press(Shell::dialog("Dimension_Win"), "pushButton_2D");
    QVERIFY2(fluvane::caseSettings.meshLoaded, qPrintable(shell.terminal().join('\n')));
}

/// Compute with two threads, saving under `name` in the shell's folder.
inline void compute(Shell& shell, const QString& steps, const QString& interval, const QString& name,
                    const QString& tolerance = {}) {
    shell.answers.names = QStringList{shell.path(name)};
    shell.find<QPushButton>("pushButton_compute")->click();
    QWidget* const control = Shell::dialog("NUM_Process_Win");
    type(control, "lineEdit_Process", "2");
    type(control, "lineEdit_Time_Step", steps);
    type(control, "lineEdit_Terminal", interval);
    if (!tolerance.isEmpty())
        for (const char* const field : {"lineEdit_Error_U", "lineEdit_Error_T"})
            type(control, field, tolerance);
    Shell::press(control, "pushButton_ok");
    QVERIFY(shell.window->isVisible());
}

/// The same for a run that neither converges nor comes to its last step while a test lasts.
inline void computeWithoutEnd(Shell& shell, const QString& interval, const QString& name) {
    compute(shell, "10000000", interval, name, "0");
}

} // namespace road
