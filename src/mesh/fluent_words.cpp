// Number and name words of section headers and zone lines.
#include "mesh/fluent_words.h"

#include "velocity/text_file.h"

namespace fluvane {

namespace {

std::string_view fourthWord(std::string_view line) {
    for (int i = 0; i < 3; ++i)
        takeWord(line);
    return takeWord(line);
}

std::uint64_t digitOf(char c) {
    if (c >= '1' && c <= '9')
        return static_cast<std::uint64_t>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<std::uint64_t>(c - 'a') + 10;
    return 0;
}

} // namespace

std::int64_t parseHex(std::string_view word) {
    std::uint64_t value = 0;
    for (const char c : word)
        value = value * 16 + digitOf(c);
    return static_cast<std::int64_t>(value);
}

std::int64_t headerLastIndex(std::string_view line) {
    const std::string_view word = fourthWord(line);
    return word.empty() ? -1 : parseHex(word);
}

std::string zoneNameOf(std::string_view line) {
    return std::string(fourthWord(line));
}

} // namespace fluvane
