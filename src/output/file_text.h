// Text on its way into a file, in chunks, so that a large file takes neither memory nor page faults.
#pragma once

#include "output/number_format.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

class QIODevice;

namespace fluvane {

/// Gathers what is appended and hands it to a device chunk by chunk; the last chunk by `finish`. The device
/// must be open for writing and outlive the text.
class FileText {
public:
    /// Near the size of a second-level cache: the system copies a chunk while it is still in there.
    static constexpr std::size_t chunkBytes = std::size_t{1} << 18;

    explicit FileText(QIODevice& device);

    FileText& operator+=(std::string_view text);
    FileText& operator+=(char character);

    /// A number as `writeNumber` or `writeInteger` writes it, and a few bytes after it.
    void appendNumber(double value, std::string_view after);
    void appendInteger(std::int64_t value, std::string_view after);

    /// Hands on what is left. Returns false when any part of the text could not be written; what was appended
    /// after that part is dropped.
    bool finish();

private:
    void makeRoom(std::size_t bytes);
    void handOn();

    QIODevice& m_device;
    std::unique_ptr<char[]> m_chunk;
    char* m_end;
    bool m_whole = true;
};

void appendNumber(FileText& text, double value);
void appendInteger(FileText& text, std::int64_t value);

} // namespace fluvane
