// Number formats: the bytes that reach a file.
#include "output/number_format.h"

#include <QLocale>
#include <clocale>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

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
