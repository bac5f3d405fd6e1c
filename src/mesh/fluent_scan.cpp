// Lines, headers, zone names and refusals of Fluent ASCII meshes.
#include "mesh/fluent_scan.h"

#include "mesh/fluent_words.h"
#include "output/terminal.h"

#include <algorithm>
#include <array>
#include <limits>

namespace fluvane {

namespace {

// What a table says of a byte: its digit, or one of these two.
constexpr std::uint8_t notHex = 16;
constexpr std::uint8_t blank = 17;

using HexTable = std::array<std::uint8_t, 256>;

constexpr HexTable makeHexTable(bool upperCaseCounts) {
    HexTable table{};
    table.fill(notHex);
    for (std::size_t i = 0; i < 10; ++i)
        table['0' + i] = static_cast<std::uint8_t>(i);
    for (std::size_t i = 0; i < 6; ++i) {
        table['a' + i] = static_cast<std::uint8_t>(10 + i);
        table['A' + i] = static_cast<std::uint8_t>(upperCaseCounts ? 10 + i : 0);
    }
    for (const char c : {' ', '\t', '\v', '\f', '\r'})
        table[static_cast<unsigned char>(c)] = blank;
    return table;
}

constexpr HexTable bothCases = makeHexTable(true);
constexpr HexTable lowerCase = makeHexTable(false); // the digits of parseHex

template <const HexTable& table = bothCases>
std::uint8_t hexOf(char c) {
    return table[static_cast<unsigned char>(c)];
}

/// Takes a hexadecimal word off the front of `p`; false when it is none or above 2147483647.
template <const HexTable& table>
bool takeHexWord(const char*& p, const char* end, std::int32_t& value) {
    const char* const first = p;
    std::uint64_t sum = 0;
    for (; p != end && hexOf<table>(*p) < 16; ++p) {
        sum = sum * 16 + hexOf<table>(*p);
        if (sum > std::numeric_limits<std::int32_t>::max())
            return false;
    }
    value = static_cast<std::int32_t>(sum);
    return p != first && (p == end || hexOf<table>(*p) == blank);
}

void skipBlanks(const char*& p, const char* end) {
    while (p != end && hexOf(*p) == blank)
        ++p;
}

std::string_view trimmed(std::string_view line) {
    while (!line.empty() && hexOf(line.front()) == blank)
        line.remove_prefix(1);
    return line;
}

std::string_view wordAt(std::string_view line, int index) {
    for (int i = 0; i < index; ++i)
        takeWord(line);
    return takeWord(line);
}

bool isBinarySection(std::string_view line) {
    return line.size() > 5 && line[0] == '(' && (line[1] == '2' || line[1] == '3') && line[2] == '0' &&
           hexOf(line[3]) < 10 && hexOf(line[4]) < 10 && (hexOf(line[5]) == blank || line[5] == '(');
}

} // namespace

bool FluentScan::nextOrRefuse(const QString& expected) {
    return next() || refuseAt(lineNumber() + 1, expected, QStringLiteral("the end of the file"));
}

std::string_view FluentScan::peek() const {
    LineScanner ahead(m_lines.rest());
    return ahead.next() ? ahead.line() : std::string_view();
}

QString FluentScan::originOf(const HeaderCount& count) {
    QString note;
    if (hasUpperCaseHex(count.word))
        note = QStringLiteral("; upper-case letters count 0 there");
    else if (count.word.find_first_of("()") != std::string_view::npos)
        note = QStringLiteral("; a parenthesis is a zero digit there");
    return QStringLiteral(" (line %1 says %2%3)")
        .arg(QString::number(count.line), quotedText(count.word), note);
}

std::int64_t FluentScan::roomFor(std::size_t bytesPerEntry) const {
    return static_cast<std::int64_t>(std::min<std::size_t>(m_lines.rest().size() / bytesPerEntry + 1,
                                                           std::numeric_limits<std::int32_t>::max()));
}

bool FluentScan::readCount(std::string_view section, std::int64_t most, const QString& why,
                           HeaderCount& count) {
    const std::string_view first = wordAt(line(), 0);
    if (first.size() != section.size() + 1 || first[0] != '(' || first.substr(1) != section)
        return refuseLine(QStringLiteral("a header \"(%1 (id first last ...\"")
                              .arg(QString::fromLatin1(section.data(), static_cast<int>(section.size()))));
    return readCount(line(), lineNumber(), most, why, count);
}

bool FluentScan::readCount(std::string_view line, std::int64_t lineNumber, std::int64_t most,
                           const QString& why, HeaderCount& count) const {
    constexpr std::size_t longestWord = 15; // longer ones would wrap
    count.word = wordAt(line, 3);
    count.line = lineNumber;
    const std::int64_t value = headerLastIndex(line);
    const QString expected =
        QStringLiteral("a last index of 0 to %1 as the fourth word (%2)").arg(QString::number(most), why);
    if (count.word.empty())
        return refuseAt(lineNumber, expected, quotedText(line));
    if (count.word.size() > longestWord || value > most)
        return refuseAt(lineNumber, expected, QStringLiteral("hexadecimal %1").arg(quotedText(count.word)));
    count.value = static_cast<std::int32_t>(value);
    return true;
}

bool FluentScan::readZoneNames(std::size_t zones, std::vector<QString>& names) {
    for (int ignored = 0; ignored < 2; ++ignored)
        next(); // at the end of the file the first name is missed
    for (std::size_t j = 0; j < zones; ++j) {
        const QString expected =
            QStringLiteral("boundary zone %1 of %2 as \"(45 (id type name)())\"").arg(j + 1).arg(zones);
        if (!nextOrRefuse(expected))
            return false;
        const std::string_view type = wordAt(line(), 2);
        const std::string name = zoneNameOf(line());
        if (name.empty() || !has(")())"))
            return refuseLine(expected);
        if (type == "fluid" || type == "solid" || type == "interior")
            return refuseForeign(expected, quotedText(line()));
        names.push_back(QString::fromStdString(name).remove(QLatin1String(")())")));
    }
    return true;
}

bool FluentScan::checkUnmarkedLine() {
    const QString expected = QStringLiteral("a mesh of the supported Fluent ASCII layout");
    const std::string_view text = trimmed(line());
    if (text.starts_with("$MeshFormat"))
        return refuseForeign(expected, QStringLiteral("Gmsh's own format"));
    if (text.starts_with("\x89HDF"))
        return refuse(expected, QStringLiteral("an HDF5 file"));
    if (isBinarySection(text))
        return refuseForeign(
            expected, QStringLiteral("binary section %1").arg(QString::fromLatin1(text.data() + 1, 4)));
    if (text.starts_with("(13 ") || text.starts_with("(13(")) {
        const bool interior = wordAt(text, 4) == "2";
        return refuseForeign(interior
                                 ? QStringLiteral("a single interior face zone")
                                 : QStringLiteral("a line with \"Faces of zone\" before every face header"),
                             quotedText(line()));
    }
    return true;
}

bool FluentScan::refuseAt(std::int64_t lineNumber, const QString& expected, const QString& found) const {
    reportProblem(QStringLiteral("Mesh file %1, line %2: expected %3, found %4")
                      .arg(m_fileName, QString::number(lineNumber), expected, found));
    return false;
}

bool FluentScan::refuse(const QString& expected, const QString& found) const {
    return refuseAt(lineNumber(), expected, found);
}

bool FluentScan::refuseLine(const QString& expected) const {
    return refuse(expected, line().empty() ? QStringLiteral("an empty line") : quotedText(line()));
}

bool FluentScan::refuseForeign(const QString& expected, const QString& found) const {
    return refuse(expected, found + QStringLiteral("; tools/fluvane-mesh may convert the file"));
}

int faceTypeOf(std::string_view header) {
    const std::string_view word = wordAt(header, 5);
    int value = -1;
    for (std::size_t i = 0; i < word.size() && i < 4 && hexOf(word[i]) < 16; ++i)
        value = (value < 0 ? 0 : value * 16) + hexOf(word[i]);
    return value;
}

bool parseFaceWords(std::string_view line, std::int32_t* values, int count, std::string_view& rest) {
    const char* p = line.data();
    const char* const end = p + line.size();
    for (int i = 0; i < count; ++i) {
        skipBlanks(p, end);
        if (!takeHexWord<bothCases>(p, end, values[i]))
            return false;
    }
    rest = std::string_view(p, static_cast<std::size_t>(end - p));
    return true;
}

bool parseLowerCaseFaceWords(std::string_view line, std::int32_t* values, int most, int& count) {
    const char* p = line.data();
    const char* const end = p + line.size();
    for (count = 0;; ++count) {
        skipBlanks(p, end);
        if (p == end)
            return true;
        std::int32_t value = 0;
        if (!takeHexWord<lowerCase>(p, end, value))
            return false;
        if (count < most)
            values[count] = value;
    }
}

bool hasUpperCaseHex(std::string_view line) {
    return std::any_of(line.begin(), line.end(), [](char c) { return c >= 'A' && c <= 'F'; });
}

} // namespace fluvane
