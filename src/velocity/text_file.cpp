// Whole-file reading, lines, words and numbers.
#include "velocity/text_file.h"

#include <QFile>
#include <QFileInfo>
#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>

namespace fluvane {

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

TextFile readTextFile(const QString& path, std::int64_t limit) {
    TextFile result;
    const QFileInfo info(path);
    if (path.isEmpty()) {
        result.error = QStringLiteral("no file name");
        return result;
    }
    if (info.exists() && !info.isFile()) { // opening a pipe or a device could wait for ever
        result.error = QStringLiteral("not a regular file");
        return result;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        result.error = file.errorString();
        return result;
    }
    result.opened = true;
    const qint64 size = file.size();
    if (size > limit) {
        result.error = QStringLiteral("the file has %1 bytes, expected at most %2").arg(size).arg(limit);
        return result;
    }
    result.bytes = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size));
    while (result.size < static_cast<std::size_t>(size)) {
        const qint64 got =
            file.read(result.bytes.get() + result.size, size - static_cast<qint64>(result.size));
        if (got <= 0) {
            result.error = QStringLiteral("the file could be read only up to byte %1 of %2")
                               .arg(static_cast<qint64>(result.size))
                               .arg(size);
            return result;
        }
        result.size += static_cast<std::size_t>(got);
    }
    return result;
}

bool LineScanner::next() {
    if (m_rest.empty())
        return false;
    const auto* feed = static_cast<const char*>(std::memchr(m_rest.data(), '\n', m_rest.size()));
    const std::size_t length = feed ? static_cast<std::size_t>(feed - m_rest.data()) : m_rest.size();
    m_line = m_rest.substr(0, length);
    m_rest.remove_prefix(feed ? length + 1 : length);
    if (!m_line.empty() && m_line.back() == '\r')
        m_line.remove_suffix(1);
    ++m_number;
    return true;
}

std::string_view takeWord(std::string_view& text) {
    std::size_t first = 0;
    while (first < text.size() && isBlank(text[first]))
        ++first;
    std::size_t last = first;
    while (last < text.size() && !isBlank(text[last]))
        ++last;
    const std::string_view word = text.substr(first, last - first);
    text.remove_prefix(last);
    return word;
}

std::optional<double> parseDecimal(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-')
        word.remove_prefix(1);
    double value = 0.0;
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, value);
    if (stop != end || word.empty())
        return std::nullopt;
    if (error == std::errc::result_out_of_range) { // too large or too small: the sign of the exponent tells
        const std::size_t exponent = word.find_first_of("eE");
        const bool small = exponent == std::string_view::npos
                               ? word.find_first_of("123456789") > word.find('.')
                               : word.substr(exponent + 1).starts_with('-');
        return small ? std::optional<double>(0.0) : std::nullopt;
    }
    if (error != std::errc() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString quotedText(std::string_view found) {
    constexpr std::size_t readable = 60;
    QString shown = QString::fromUtf8(found.data(), static_cast<int>(std::min(found.size(), readable)));
    for (QChar& c : shown)
        if (!c.isPrint())
            c = QLatin1Char('?');
    return QLatin1Char('"') + shown +
           (found.size() > readable ? QStringLiteral("...\"") : QStringLiteral("\""));
}

} // namespace fluvane
