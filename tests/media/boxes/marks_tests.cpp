// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/marks.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "media/codec/aac.h"

namespace vantoro::testing {
namespace {

using namespace media;

RecordingMark markAt(std::int64_t frame, const std::string& text) {
    return {.time = {.value = frame, .timescale = framesPerSecond}, .text = text};
}

/// The content of the box that holds the marks.
std::vector<std::byte> contentOf(const std::vector<RecordingMark>& marks) {
    BoxWriter out;
    writeMarks(out, marks);
    const auto box = out.take();
    const auto content = BoxReader(box).next().value().content;
    return {content.begin(), content.end()};
}

TEST(Marks, readBackAsWritten) {
    const std::vector marks{markAt(0, "Beginning"), markAt(1'000'000, "问题"), markAt(48'000, "")};
    EXPECT_EQ(readMarks(contentOf(marks)), marks);
}

TEST(Marks, noneTakeNoBox) {
    BoxWriter out;
    writeMarks(out, {});
    writeChapters(out, {});
    EXPECT_EQ(out.size(), 0U);
}

TEST(Marks, ofAnotherProgramsBoxAreNone) {
    auto content = contentOf({markAt(0, "Beginning")});
    content.front() ^= std::byte{1};
    EXPECT_TRUE(readMarks(content).empty());
    content.resize(15);
    EXPECT_TRUE(readMarks(content).empty());
}

TEST(Marks, thatAreIncompleteAreDamage) {
    const auto whole = contentOf({markAt(0, "Beginning")});
    for (std::size_t size = 17; size < whole.size(); ++size) {
        EXPECT_THROW(readMarks(std::span(whole).first(size)), DamagedMovie) << size;
    }
}

TEST(Marks, titlesAreCutBetweenCharacters) {
    EXPECT_EQ(chapterTitle(std::string(255, 'a')), std::string(255, 'a'));
    EXPECT_EQ(chapterTitle(std::string(300, 'a')), std::string(255, 'a'));
    std::string chinese; // three bytes each
    for (int i = 0; i < 100; ++i) {
        chinese += "问";
    }
    EXPECT_EQ(chapterTitle(chinese), chinese.substr(0, 255));
    EXPECT_EQ(chapterTitle("a" + chinese), "a" + chinese.substr(0, 252));
}

TEST(Marks, chaptersAreAsManyAsAFileCanHold) {
    BoxWriter out;
    writeChapters(out, std::vector(300, markAt(0, "")));
    constexpr std::size_t header = 8 + 4 + 4 + 1;
    EXPECT_EQ(out.size(), header + (255 * 9));
}

} // namespace
} // namespace vantoro::testing
