// The number formats.
#include "output/number_format.h"

#include <charconv>
#include <cmath>

namespace fluvane {

namespace {
constexpr int significantDigits = 6;
constexpr std::size_t roomForNumber = 32; // "-1.23457e-308" or the 20 characters of the smallest integer
} // namespace

void appendNumber(std::string& text, double value) {
    if (!std::isfinite(value)) { // to_chars leaves these spellings to the library
        if (std::signbit(value))
            text += '-';
        text += std::isnan(value) ? "nan" : "inf";
        return;
    }
    char digits[roomForNumber];
    const auto end =
        std::to_chars(digits, digits + roomForNumber, value, std::chars_format::general, significantDigits);
    text.append(digits, end.ptr);
}

void appendInteger(std::string& text, std::int64_t value) {
    char digits[roomForNumber];
    const auto end = std::to_chars(digits, digits + roomForNumber, value);
    text.append(digits, end.ptr);
}

} // namespace fluvane
