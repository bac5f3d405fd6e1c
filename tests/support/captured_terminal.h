// Catches what the program says, and starts and leaves the process-wide state empty.
#pragma once

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "velocity/velocity_set.h"

#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include <QFile>

namespace fluvane {

inline void resetProcessState() {
    caseSettings = CaseSettings{};
    velocitySet = VelocitySet{};
    mesh.clear();
    takeProblems();
}

/// A fixture with a temporary folder, whose `lines` are the terminal lines said so far.
class CapturedTerminalTest : public ::testing::Test {
protected:
    CapturedTerminalTest() {
        resetProcessState();
        setTerminalSink([this](const QString& line) { lines.append(line); });
    }
    ~CapturedTerminalTest() override {
        setTerminalSink({});
        resetProcessState();
    }

    QString pathOf(const QString& name) const { return folder.filePath(name); }

    QString write(const QString& name, std::string_view text) const {
        QFile file(pathOf(name));
        const bool written =
            file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
            file.write(text.data(), static_cast<qint64>(text.size())) == static_cast<qint64>(text.size());
        EXPECT_TRUE(written);
        return pathOf(name);
    }

    /// The complaints so far; expects as many and returns them as one text.
    static std::string problems(int count) {
        const QStringList said = takeProblems();
        EXPECT_EQ(said.size(), count) << said.join('\n').toStdString();
        return said.join('\n').toStdString();
    }

    QStringList lines;
    QTemporaryDir folder;
};

} // namespace fluvane
