// Numbers as text for every file the program writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fluvane {

/// Bytes that `writeNumber` and `writeInteger` may touch from where they begin; no number is longer.
constexpr std::size_t roomForNumber = 32;

/// Writes `value` as the "%g" conversion with 6 significant digits, whatever the locale. Values that are not
/// finite are spelled as streams spell them: inf, -inf, nan, -nan. Returns the end of the number; what stands
/// between it and the end of the room is undefined.
char* writeNumber(char* to, double value);

/// Writes `value` in plain decimal and returns its end.
char* writeInteger(char* to, std::int64_t value);

/// Appends `value` as `writeNumber` writes it.
void appendNumber(std::string& text, double value);

/// Appends `value` in plain decimal.
void appendInteger(std::string& text, std::int64_t value);

} // namespace fluvane
