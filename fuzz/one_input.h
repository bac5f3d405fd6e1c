// What the fuzz targets share: an input as a file, silence, and properties whose loss is a finding.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>

namespace fluvane::fuzz {

/// The path of a file that holds the input; the same file is used for each.
const QString& fileOf(const std::uint8_t* data, std::size_t size);

/// Ends the process with the input saved, and `property` on standard error, unless `holds`.
void expect(bool holds, const char* property);

/// The complaints since the last call: each must be one line that names the input's file.
int checkedProblems();

/// Silences the terminal and keeps parallel loops to one thread. Once a process.
void prepare();

} // namespace fluvane::fuzz
