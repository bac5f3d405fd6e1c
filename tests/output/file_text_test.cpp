// Text in chunks: what the device gets, and what is said when it takes no more.
#include "output/file_text.h"

#include <QBuffer>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace fluvane {
namespace {

constexpr std::size_t chunk = FileText::chunkBytes;

/// Takes `room` bytes and counts the writes; a write that does not fit fails.
class SmallDevice : public QBuffer {
public:
    explicit SmallDevice(std::size_t room) : m_room(static_cast<qint64>(room)) {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    int writes = 0;

protected:
    qint64 writeData(const char* bytes, qint64 size) override {
        ++writes;
        return pos() + size > m_room ? -1 : QBuffer::writeData(bytes, size);
    }

private:
    qint64 m_room;
};

TEST(FileText, HandsOnWhatAStringWouldHold) {
    // Over so many chunks every kind of piece meets the end of one.
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> uniform(-1e7, 1.0);
    SmallDevice device(40 * chunk);
    FileText text(device);
    std::string expected;
    while (expected.size() < 30 * chunk) {
        const double value = uniform(random);
        const auto integer = static_cast<std::int64_t>(random());
        text += "u=";
        text.appendNumber(value, ", ");
        text.appendInteger(integer, "\r\n");
        appendNumber(text, value);
        text += ' ';
        appendInteger(text, -integer);
        expected += "u=";
        appendNumber(expected, value);
        expected += ", ";
        appendInteger(expected, integer);
        expected += "\r\n";
        appendNumber(expected, value);
        expected += ' ';
        appendInteger(expected, -integer);
    }
    ASSERT_TRUE(text.finish());
    EXPECT_TRUE(device.data().toStdString() == expected) << "the texts differ";
}

TEST(FileText, TakesAPieceLongerThanAChunk) {
    SmallDevice device(4 * chunk);
    FileText text(device);
    std::string piece(2 * chunk + 17, '\0');
    for (std::size_t i = 0; i < piece.size(); ++i)
        piece[i] = static_cast<char>(i % 251);
    text += '<';
    text += piece;
    text += std::string_view();
    ASSERT_TRUE(text.finish());
    EXPECT_TRUE(device.data().toStdString() == '<' + piece) << "the texts differ";
}

TEST(FileText, HandsOnFullChunksAndHoldsBackTheRest) {
    SmallDevice device(4 * chunk);
    FileText text(device);
    text += std::string(chunk, 'a');
    text += 'b';
    EXPECT_EQ(device.writes, 1);
    EXPECT_EQ(static_cast<std::size_t>(device.data().size()), chunk);
    EXPECT_TRUE(text.finish());
    EXPECT_EQ(static_cast<std::size_t>(device.data().size()), chunk + 1);
}

TEST(FileText, FinishesAnEmptyText) {
    SmallDevice device(0);
    FileText text(device);
    EXPECT_TRUE(text.finish());
    EXPECT_TRUE(device.data().isEmpty());
}

TEST(FileText, SaysWhenTheLastChunkCouldNotBeWritten) {
    SmallDevice device(chunk);
    FileText text(device);
    text += std::string(chunk + 1, 'a');
    EXPECT_FALSE(text.finish());
}

TEST(FileText, DropsWhatComesAfterAChunkThatCouldNotBeWritten) {
    SmallDevice device(chunk / 2);
    FileText text(device);
    text += std::string(3 * chunk, 'a');
    text += "the end";
    EXPECT_FALSE(text.finish());
    EXPECT_EQ(device.writes, 1) << "a short last chunk would fit where a full one did not";
    EXPECT_TRUE(device.data().isEmpty());
}

} // namespace
} // namespace fluvane
