// Number formats: the bytes that reach a file.
#include "output/number_format.h"

#include <QLocale>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

namespace fluvane {
namespace {

std::string number(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

std::string streamed(double value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

TEST(NumberFormat, PrintsSixSignificantDigitsWithoutTrailingZeros) {
    EXPECT_EQ(number(0.0), "0");
    EXPECT_EQ(number(-0.0), "-0");
    EXPECT_EQ(number(1.0), "1");
    EXPECT_EQ(number(0.1), "0.1");
    EXPECT_EQ(number(1.0 / 3.0), "0.333333");
    EXPECT_EQ(number(-2.0 / 3.0), "-0.666667");
    EXPECT_EQ(number(123456.0), "123456");
    EXPECT_EQ(number(0.0001), "0.0001");
}

TEST(NumberFormat, TurnsToExponentsWhereGeneralNotationDoes) {
    EXPECT_EQ(number(1e-5), "1e-05");
    EXPECT_EQ(number(999999.4), "999999");
    EXPECT_EQ(number(999999.5), "1e+06");
    EXPECT_EQ(number(1234567.0), "1.23457e+06");
    EXPECT_EQ(number(0.00012345678), "0.000123457");
    EXPECT_EQ(number(0.000012345678), "1.23457e-05");
    EXPECT_EQ(number(std::numeric_limits<double>::max()), "1.79769e+308");
    EXPECT_EQ(number(-std::numeric_limits<double>::denorm_min()), "-4.94066e-324");
}

TEST(NumberFormat, AgreesWithAStreamOfTheClassicLocaleOverAllMagnitudes) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-1070, 1020);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::ldexp(mantissa(random), i % 2 ? exponent(random) : exponent(random) / 60);
        ASSERT_EQ(number(value), streamed(value));
    }
}

/// Compares `value` and its negative with the C library; says which number differs.
void expectAsPrinted(double value) {
    for (const double signedValue : {value, -value}) {
        char room[roomForNumber];
        const char* const end = writeNumber(room, signedValue);
        char printed[64];
        const int length = std::snprintf(printed, sizeof printed, "%g", signedValue);
        ASSERT_EQ(std::string_view(room, static_cast<std::size_t>(end - room)),
                  std::string_view(printed, static_cast<std::size_t>(length)))
            << std::hexfloat << signedValue;
    }
}

/// `value` and the doubles up to `steps` beside it on both sides.
void expectAsPrintedAround(double value, int steps) {
    expectAsPrinted(value);
    double up = value, down = value;
    for (int i = 0; i < steps; ++i) {
        up = std::nextafter(up, std::numeric_limits<double>::infinity());
        down = std::nextafter(down, 0.0);
        expectAsPrinted(up);
        expectAsPrinted(down);
    }
}

TEST(NumberFormat, AgreesWithTheLibraryForRandomBits) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 300000; ++i)
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(std::bit_cast<double>(random())));
}

TEST(NumberFormat, AgreesWithTheLibraryForNumbersAsFieldsHoldThem) {
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    for (int i = 0; i < 100000; ++i)
        for (const double scale : {1e-40, 1e-18, 1e-5, 1.0, 20.0, 1e7, 1e29})
            ASSERT_NO_FATAL_FAILURE(expectAsPrinted(scale * uniform(random)));
}

TEST(NumberFormat, AgreesWithTheLibraryAroundTies) {
    // Seven digits that end in 5, at every decimal exponent a double has.
    std::mt19937_64 random(13);
    std::uniform_int_distribution<int> sixDigits(100000, 999999);
    for (int exponent = -330; exponent <= 302; ++exponent)
        for (int i = 0; i < 30; ++i) {
            const std::string tie = std::to_string(sixDigits(random)) + "5e" + std::to_string(exponent);
            ASSERT_NO_FATAL_FAILURE(expectAsPrintedAround(std::strtod(tie.c_str(), nullptr), 3));
        }
    // Ties that are doubles: here the even digit wins.
    for (int thousandths = 100000125; thousandths < 1000000000; thousandths += 130250)
        ASSERT_NO_FATAL_FAILURE(expectAsPrintedAround(thousandths / 1000.0, 2));
    for (int i = 100000; i < 1000000; i += 37)
        ASSERT_NO_FATAL_FAILURE(expectAsPrintedAround(i + 0.5, 2));
}

TEST(NumberFormat, AgreesWithTheLibraryAroundPowersOfTenAndOfTwo) {
    for (int exponent = -324; exponent <= 308; ++exponent)
        for (const char* digits : {"1", "9.99999", "9.999994999999999", "9.9999949999999999", "9.999995"}) {
            const std::string text = std::string(digits) + 'e' + std::to_string(exponent);
            ASSERT_NO_FATAL_FAILURE(expectAsPrintedAround(std::strtod(text.c_str(), nullptr), 20));
        }
    for (int exponent = -1074; exponent <= 1023; ++exponent)
        ASSERT_NO_FATAL_FAILURE(expectAsPrintedAround(std::ldexp(1.0, exponent), 5));
}

TEST(NumberFormat, AgreesWithTheLibraryForIntegersAndShortDecimals) {
    for (int i = 0; i < 100000; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(i));
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(i / 1000.0));
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(i * 997.0));
    }
}

TEST(NumberFormat, AgreesWithTheLibraryForTheSmallestAndTheLargestDoubles) {
    for (std::uint64_t bits = 0; bits < 2000; ++bits) {
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(std::bit_cast<double>(bits)));
        ASSERT_NO_FATAL_FAILURE(expectAsPrinted(std::bit_cast<double>(0x7fefffffffffffffU - bits)));
    }
    const double infinity = std::numeric_limits<double>::infinity();
    ASSERT_NO_FATAL_FAILURE(expectAsPrinted(infinity));
    ASSERT_NO_FATAL_FAILURE(expectAsPrinted(std::numeric_limits<double>::quiet_NaN()));
}

TEST(NumberFormat, StaysInItsRoom) {
    std::mt19937_64 random(15);
    for (int i = 0; i < 100000; ++i) {
        char room[roomForNumber + 1];
        room[roomForNumber] = '#';
        const double value = std::bit_cast<double>(random());
        ASSERT_LE(writeNumber(room, value), room + roomForNumber);
        ASSERT_EQ(room[roomForNumber], '#') << value;
    }
}

TEST(NumberFormat, SpellsNonFiniteNumbersAsStreamsDo) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(number(inf), "inf");
    EXPECT_EQ(number(-inf), "-inf");
    EXPECT_EQ(number(std::copysign(nan, 1.0)), "nan");
    EXPECT_EQ(number(std::copysign(nan, -1.0)), "-nan");
}

TEST(NumberFormat, IgnoresTheLocaleOfProcessAndToolkit) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const QLocale toolkitBefore;
    // Where the system lacks the locale, the toolkit's own table still has it.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(number(1234.5), "1234.5");
    EXPECT_EQ(number(0.25), "0.25");
    std::string integer;
    appendInteger(integer, 1234567);
    EXPECT_EQ(integer, "1234567");
    QLocale::setDefault(toolkitBefore);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(NumberFormat, PrintsIntegersInPlainDecimal) {
    std::string text;
    appendInteger(text, -1);
    text += ' ';
    appendInteger(text, 1048576);
    text += ' ';
    appendInteger(text, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(text, "-1 1048576 -9223372036854775808");
}

TEST(NumberFormat, AppendsAndKeepsWhatIsThere) {
    std::string text = "dt=";
    appendNumber(text, 0.5);
    EXPECT_EQ(text, "dt=0.5");
}

} // namespace
} // namespace fluvane
