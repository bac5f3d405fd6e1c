// The number and name words of the Fluent ASCII mesh layout.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fluvane {

/// Reads a word as hexadecimal: every character shifts the value by one digit; '1'-'9' and 'a'-'f' count,
/// all others count 0. Deliberate: upper-case letters and parentheses are zero digits. Values beyond 64 bits
/// wrap; readers reject words that long before they trust them.
std::int64_t parseHex(std::string_view word);

/// The fourth whitespace-separated word of a section header, by parseHex; -1 with fewer than four words.
std::int64_t headerLastIndex(std::string_view line);

/// The fourth whitespace-separated word of a zone line; empty with fewer words.
std::string zoneNameOf(std::string_view line);

} // namespace fluvane
