// The number formats.
//
// A number x of ordinary size is multiplied by the power of ten that leaves six digits before its point, and
// the product is rounded to an integer: the six digits. The product is not x * 10^k itself, but off by less
// than 2^-30, see `scaled`. So when its fraction is farther than that from 1/2, product and x * 10^k lie on
// the same side of the tie and round to the same integer, which is the correctly rounded one. Products nearer
// to a tie, about one in a million, and numbers of extraordinary size are left to the library.
#include "output/number_format.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace fluvane {

namespace {

constexpr int significantDigits = 6;
constexpr std::int32_t tooManyDigits = 1000000; // the smallest integer of seven
constexpr double tieMargin = 0x1p-20;           // 2^-30 would do

constexpr int largestExactPower = 22; // 10^22 = 2^22 * 5^22, and 5^22 < 2^53
constexpr auto powersOfTen = [] {
    std::array<double, largestExactPower + 1> powers{1.0};
    for (std::size_t k = 1; k < powers.size(); ++k)
        powers[k] = powers[k - 1] * 10.0;
    return powers;
}();

// Numbers of ordinary size, by the exponent b in 2^b <= x < 2^(b+1): those that `scaled` can scale.
constexpr int smallestBinaryExponent = -129;
constexpr int largestBinaryExponent = 93;

/// The largest e with 10^e <= 2^b: b * log10(2), rounded down.
constexpr int decimalExponentOf(int b) {
    return (b * 1233) >> 12;
}

constexpr bool estimateHolds(int b) {
    const int e = decimalExponentOf(b);
    long double ratio = 1.0L; // 2^b / 10^e, near 1 and 10 only by 2 % and 1 %, or 1 itself
    for (int i = 0; i < (b < 0 ? -b : b); ++i)
        ratio *= b < 0 ? 0.5L : 2.0L;
    for (int i = 0; i < (e < 0 ? -e : e); ++i)
        ratio *= e < 0 ? 10.0L : 0.1L;
    return ratio >= 1.0L && ratio < 10.0L;
}
static_assert([] {
    for (int b = smallestBinaryExponent; b <= largestBinaryExponent; ++b)
        if (!estimateHolds(b))
            return false;
    return true;
}());
static_assert(5 - decimalExponentOf(smallestBinaryExponent) <= 2 * largestExactPower &&
                  5 - decimalExponentOf(largestBinaryExponent) >= -largestExactPower,
              "numbers of ordinary size are scaled by powers of ten that are exact");

constexpr auto digitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t n = 0; n < 100; ++n) {
        pairs[2 * n] = static_cast<char>('0' + n / 10);
        pairs[2 * n + 1] = static_cast<char>('0' + n % 10);
    }
    return pairs;
}();

void writePair(char* to, std::uint32_t n) {
    std::memcpy(to, digitPairs.data() + std::size_t{2} * n, 2);
}

/// x * 10^k for k from -22 to 44. The powers used are exact, so that the error is that of at most two
/// roundings, relatively less than 2^-51 in whatever direction the processor rounds.
double scaled(double x, int k) {
    const auto power = [](int n) { return powersOfTen[static_cast<std::size_t>(n)]; };
    if (k < 0)
        return x / power(-k);
    if (k <= largestExactPower)
        return x * power(k);
    return x * power(largestExactPower) * power(k - largestExactPower);
}

/// Every number, more slowly.
char* writeByLibrary(char* to, double magnitude) {
    return std::to_chars(to, to + roomForNumber - 1, magnitude, std::chars_format::general, significantDigits)
        .ptr;
}

/// Six digits with the first standing for 10^exponent, -39 <= exponent <= 29, in the "%g" form.
char* layOut(char* to, std::uint32_t digits, int exponent) {
    const bool leadingZeros = exponent < 0 && exponent >= -4;
    char* const first = leadingZeros ? to + 1 - exponent : to + 1; // the byte before takes the point
    writePair(first, digits / 10000);
    writePair(first + 2, digits / 100 % 100);
    writePair(first + 4, digits % 100);
    int count = significantDigits;
    while (first[count - 1] == '0')
        --count; // the first digit is none
    if (leadingZeros) {
        std::memcpy(to, "0.000", static_cast<std::size_t>(1 - exponent));
        return first + count;
    }
    const bool fixed = exponent >= 0 && exponent < significantDigits;
    const int beforePoint = fixed ? exponent + 1 : 1;
    for (int i = 0; i < beforePoint; ++i)
        to[i] = first[i];
    to[beforePoint] = '.';
    char* end = count > beforePoint ? to + count + 1 : to + beforePoint;
    if (fixed)
        return end;
    *end++ = 'e';
    *end++ = exponent < 0 ? '-' : '+';
    writePair(end, static_cast<std::uint32_t>(exponent < 0 ? -exponent : exponent));
    return end + 2;
}

char* writeMagnitude(char* to, double x) {
    if (x == 0.0) {
        *to = '0';
        return to + 1;
    }
    const int b = static_cast<int>(std::bit_cast<std::uint64_t>(x) >> 52) - 1023;
    if (b < smallestBinaryExponent || b > largestBinaryExponent)
        return writeByLibrary(to, x);
    int exponent = decimalExponentOf(b);
    double product = scaled(x, significantDigits - 1 - exponent);
    if (product >= tooManyDigits) { // 2^b below a power of ten, x above it
        product /= 10.0;
        ++exponent;
    }
    auto digits = static_cast<std::int32_t>(product);
    const double fraction = product - digits; // exact
    if (std::fabs(fraction - 0.5) < tieMargin)
        return writeByLibrary(to, x);
    digits += fraction > 0.5 ? 1 : 0;
    if (digits == tooManyDigits) {
        digits /= 10;
        ++exponent;
    }
    return layOut(to, static_cast<std::uint32_t>(digits), exponent);
}

} // namespace

char* writeNumber(char* to, double value) {
    *to = '-';
    to += std::signbit(value) ? 1 : 0;
    if (std::isfinite(value))
        return writeMagnitude(to, std::fabs(value));
    std::memcpy(to, std::isnan(value) ? "nan" : "inf", 3); // to_chars leaves these spellings to the library
    return to + 3;
}

char* writeInteger(char* to, std::int64_t value) {
    return std::to_chars(to, to + roomForNumber, value).ptr;
}

void appendNumber(std::string& text, double value) {
    char number[roomForNumber];
    text.append(number, writeNumber(number, value));
}

void appendInteger(std::string& text, std::int64_t value) {
    char number[roomForNumber];
    text.append(number, writeInteger(number, value));
}

} // namespace fluvane
