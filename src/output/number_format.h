// Numbers as text for every file the program writes.
#pragma once

#include <cstdint>
#include <string>

namespace fluvane {

/// Appends `value` as the "%g" conversion with 6 significant digits, whatever the locale. Values that are not
/// finite are spelled as streams spell them: inf, -inf, nan, -nan.
void appendNumber(std::string& text, double value);

/// Appends `value` in plain decimal.
void appendInteger(std::string& text, std::int64_t value);

} // namespace fluvane
