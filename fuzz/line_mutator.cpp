// Mutations that know lines and words: a text of sections and tables survives them oftener than flipped
// bytes.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Random = std::minstd_rand;

std::vector<std::string_view> partsOf(std::string_view text, bool (*ends)(char)) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at;
        while (end < text.size() && !ends(text[end]))
            ++end;
        if (end > at)
            parts.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

bool endsLine(char c) {
    return c == '\n';
}

bool endsWord(char c) {
    return std::isspace(static_cast<unsigned char>(c)) || c == '(' || c == ')';
}

std::string_view anyOf(const std::vector<std::string_view>& parts, Random& random) {
    return parts[random() % parts.size()];
}

std::string numberNear(std::string_view word, Random& random) {
    constexpr const char* edges[] = {"0",     "1",      "7fffffff", "80000000", "ffffffffffffffff",
                                     "1e300", "-1e300", "1e-300",   "-0",       "5e-324",
                                     "1e154", "-1e154", "1e-154",   "0.5",      "A"};
    if (random() % 4 == 0)
        return edges[random() % std::size(edges)];
    std::string changed(word);
    char& digit = changed[random() % changed.size()];
    digit = "0123456789abcdef.-"[random() % 18];
    return changed;
}

/// `text` with one line or word deleted, repeated, moved or exchanged.
std::string changed(std::string_view text, Random& random) {
    const bool ofLines = random() % 2 == 0;
    const auto parts = partsOf(text, ofLines ? endsLine : endsWord);
    if (parts.empty())
        return std::string(text);
    const std::string_view part = anyOf(parts, random);
    const std::string_view other = anyOf(parts, random);
    const std::string gap = ofLines ? "\n" : " ";
    std::string replacement;
    switch (random() % (ofLines ? 4 : 6)) {
    case 0:
        break;
    case 1:
        replacement.append(part).append(gap).append(part);
        break;
    case 2:
        replacement.append(other);
        break;
    case 3:
        replacement.append(other).append(gap).append(part);
        break;
    default:
        replacement = numberNear(part, random);
    }
    const auto at = static_cast<std::size_t>(part.data() - text.data());
    return std::string(text.substr(0, at)) + replacement + std::string(text.substr(at + part.size()));
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    Random random(seed);
    if (size == 0 || random() % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::string text(reinterpret_cast<const char*>(data), size);
    for (auto changes = 1 + random() % 3; changes > 0; --changes)
        text = changed(text, random);
    const std::size_t length = std::min(text.size(), maxSize);
    std::memcpy(data, text.data(), length);
    return length;
}
