// Text files as the readers take them: the whole file at once, then line by line and word by word.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace fluvane {

/// The bytes of a file, or why there are none.
struct TextFile {
    bool opened = false; ///< false: missing, not a regular file, or not open to reading and writing
    QString error;       ///< empty when every byte was read
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;

    std::string_view text() const { return {bytes.get(), size}; }
};

/// Reads a file of at most `limit` bytes. Deliberate: the file is opened for reading and writing, so a
/// write-protected file cannot be read; it is never created or changed. Throws std::bad_alloc.
TextFile readTextFile(const QString& path, std::int64_t limit);

/// Walks through the lines of a text. A line ends at a line feed, which is not part of it, nor is a carriage
/// return before it; what follows the last line feed is a line of its own when it is not empty.
class LineScanner {
public:
    explicit LineScanner(std::string_view text) : m_rest(text) {}

    /// Goes to the next line; false at the end.
    bool next();
    std::string_view line() const { return m_line; }
    /// 1-based; 0 before the first line.
    std::int64_t lineNumber() const { return m_number; }
    /// What stands after the current line.
    std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
    std::string_view m_line;
    std::int64_t m_number = 0;
};

/// Takes the next blank-separated word off `text`; empty when there is none.
std::string_view takeWord(std::string_view& text);

/// The number that the whole word is, in whatever locale; nothing for other words, infinities and NaN.
/// Values too small for a double are 0.
std::optional<double> parseDecimal(std::string_view word);

/// What was found, for a message: on one line, in quotation marks, cut to a readable length.
QString quotedText(std::string_view found);

} // namespace fluvane
