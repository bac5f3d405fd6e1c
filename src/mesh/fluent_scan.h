// What the readers of both dimensions share: the walk through the lines of a Fluent ASCII mesh, its section
// headers and zone names, and the refusals.
#pragma once

#include "velocity/text_file.h"

#include <QString>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace fluvane {

/// A count or last index from a section header, with what a message needs to point at it.
struct HeaderCount {
    std::int32_t value = 0;
    std::int64_t line = 0; ///< of the header, 1-based
    std::string_view word;
};

/// Walks through one file. Every `refuse…` says one problem line and returns false, for the caller to return.
class FluentScan {
public:
    FluentScan(const QString& fileName, std::string_view text) : m_fileName(fileName), m_lines(text) {}

    bool next() { return m_lines.next(); }
    std::string_view line() const { return m_lines.line(); }
    std::int64_t lineNumber() const { return m_lines.lineNumber(); }
    bool has(std::string_view marker) const { return line().find(marker) != std::string_view::npos; }

    /// Goes to the next line; refuses when the file ends before it.
    bool nextOrRefuse(const QString& expected);

    /// The next line without going there; empty at the end.
    std::string_view peek() const;

    /// Reads the fourth word of the current line, a header of the given section ("10" or "13"). Refuses other
    /// lines and counts above `most`; `why` says in the message where that limit comes from.
    bool readCount(std::string_view section, std::int64_t most, const QString& why, HeaderCount& count);

    /// The same for a line that was met before, of whatever section.
    bool readCount(std::string_view line, std::int64_t lineNumber, std::int64_t most, const QString& why,
                   HeaderCount& count) const;

    /// How many entries of at least `bytesPerEntry` bytes what stands after the current line can hold.
    std::int64_t roomFor(std::size_t bytesPerEntry) const;

    /// Reads the lines behind "Zone Sections": two that are ignored, then one name a zone.
    bool readZoneNames(std::size_t zones, std::vector<QString>& names);

    /// Refuses what is known to come from another layout or format; true for every other line that is not
    /// between two markers.
    bool checkUnmarkedLine();

    bool refuse(const QString& expected, const QString& found) const;
    bool refuseAt(std::int64_t lineNumber, const QString& expected, const QString& found) const;
    /// The current line is not what was expected.
    bool refuseLine(const QString& expected) const;
    /// Another layout or format, which the import companion can turn into this one.
    bool refuseForeign(const QString& expected, const QString& found) const;

    /// " (line 7 says "2A0"; upper-case letters count 0 there)": where the count comes from.
    static QString originOf(const HeaderCount& count);

private:
    QString m_fileName;
    LineScanner m_lines;
};

/// The hexadecimal face type (sixth word) of a face header; -1 without one. Types 0 and 5 stand for zones
/// whose lines begin with their node count.
int faceTypeOf(std::string_view header);

/// Reads the first `count` words of a face line, of either letter case, into `values` and sets `rest` to what
/// follows them. False when a word is missing, not hexadecimal, or above 2147483647.
bool parseFaceWords(std::string_view line, std::int32_t* values, int count, std::string_view& rest);

/// Reads all words of a face line by the digits of `parseHex`, which are of lower case; upper-case letters
/// count 0. The first `most` words go into `values`. False when a word is not hexadecimal or above
/// 2147483647.
bool parseLowerCaseFaceWords(std::string_view line, std::int32_t* values, int most, int& count);

/// Whether a line of hexadecimal words has a letter that `parseHex` takes for 0.
bool hasUpperCaseHex(std::string_view line);

} // namespace fluvane
