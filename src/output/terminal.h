// The one way in which anything says a line to the user.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace fluvane {

/// Hands one line to the terminal sink. May be called from any thread; without a sink the line goes to
/// standard error.
void appendTerminalLine(const QString& line);

/// Says on standard error alone what the terminal deliberately does not name. May be called from any thread.
void sayOnStandardError(const QString& line);

/// Says a complaint: the line goes to the terminal and is also kept until `takeProblems` asks for it, so
/// that it can be shown again after the terminal was cleared.
void reportProblem(const QString& line);

/// The complaints since the last call, in order; forgets them.
QStringList takeProblems();

/// Installs what receives the lines; an empty function removes it. The sink may be called from any thread,
/// one line at a time.
void setTerminalSink(std::function<void(const QString&)> sink);

} // namespace fluvane
