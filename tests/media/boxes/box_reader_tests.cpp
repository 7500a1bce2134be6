// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/box_reader.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "media/boxes/box_writer.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

std::vector<std::byte> bytesOf(std::initializer_list<unsigned> values) {
    std::vector<std::byte> bytes;
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

std::unique_ptr<InputFile> fileOf(const std::vector<std::byte>& bytes) {
    MemoryFileSystem files;
    files.put("movie.mov", bytes);
    return files.open("movie.mov");
}

TEST(ByteReader, readsBigEndianNumbers) {
    const auto bytes = bytesOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
    ByteReader reader(bytes);
    EXPECT_EQ(reader.u64(), 0x0102030405060708U);
    EXPECT_EQ(reader.u32(), 0x090A0B0CU);
    EXPECT_EQ(reader.u16(), 0x0D0EU);
    EXPECT_EQ(reader.u8(), 0x0FU);
    EXPECT_THROW(reader.u8(), DamagedMovie);
}

TEST(BoxReader, readsConsecutiveBoxes) {
    const auto bytes = bytesOf({0, 0, 0, 9, 'a', 'b', 'c', 'd', 7, 0, 0, 0, 8, 'e', 'f', 'g', 'h'});
    BoxReader reader(bytes);
    const auto first = reader.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->type, boxType("abcd"));
    ASSERT_EQ(first->content.size(), 1U);
    EXPECT_EQ(first->content[0], std::byte{7});
    const auto second = reader.next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->type, boxType("efgh"));
    EXPECT_TRUE(second->content.empty());
    EXPECT_FALSE(reader.next());
}

TEST(BoxReader, takesFewerBytesThanAHeaderForTheEnd) {
    for (std::size_t size = 0; size < 8; ++size) {
        const std::vector<std::byte> bytes(size);
        EXPECT_FALSE(BoxReader(bytes).next()) << size;
    }
}

TEST(BoxReader, givesTheReasonForRefusingABox) {
    const auto complaint = [](const std::vector<std::byte>& bytes) -> std::string {
        try {
            BoxReader(bytes).next();
        } catch (const DamagedMovie& damage) {
            return damage.what();
        }
        return {};
    };
    EXPECT_EQ(complaint(bytesOf({0, 0, 0, 7, 'a', 'b', 'c', 'd'})),
              "The recording file is damaged: a box has an impossible size.");
    EXPECT_EQ(complaint(bytesOf({0, 0, 0, 9, 'a', 'b', 'c', 'd'})),
              "The recording file is damaged: a box ends too early.");
}

TEST(FileBox, isFoundAtItsOffset) {
    const auto file = fileOf(bytesOf({9, 9, 9, 0, 0, 0, 12, 'a', 'b', 'c', 'd', 1, 2, 3, 4, 9, 9}));
    const FileBox box = readFileBox(*file, 3);
    EXPECT_EQ(box.type, boxType("abcd"));
    EXPECT_EQ(box.content, 11U);
    EXPECT_EQ(box.end, 15U);
}

TEST(FileBox, mayHaveASizeOf64Bits) {
    const auto boxOf = [](unsigned size) {
        return fileOf(bytesOf({9, 0, 0, 0, 1, 'a', 'b', 'c', 'd', 0, 0, 0, 0, 0, 0, 0, size, 1}));
    };
    const FileBox box = readFileBox(*boxOf(17), 1);
    EXPECT_EQ(box.type, boxType("abcd"));
    EXPECT_EQ(box.content, 17U);
    EXPECT_EQ(box.end, 18U);
    EXPECT_EQ(readFileBox(*boxOf(16), 1).end, 17U);
    EXPECT_THROW(readFileBox(*boxOf(15), 1), DamagedMovie);
    EXPECT_THROW(readFileBox(*boxOf(18), 1), DamagedMovie);
}

TEST(FileBox, isAtLeastAsLongAsItsHeaderAndEndsInsideTheFile) {
    for (unsigned size = 0; size < 20; ++size) {
        const auto file = fileOf(bytesOf({9, 0, 0, 0, size, 'a', 'b', 'c', 'd', 1, 2}));
        if (size >= 8 && size <= 10) {
            EXPECT_EQ(readFileBox(*file, 1).end, 1 + size);
        } else {
            EXPECT_THROW(readFileBox(*file, 1), DamagedMovie) << size;
        }
    }
}

TEST(ReadExactly, readsUpToTheFilesEndAndNotBeyond) {
    const auto file = fileOf(bytesOf({1, 2, 3}));
    std::array<std::byte, 2> two{};
    readExactly(*file, 1, two);
    EXPECT_EQ(two[1], std::byte{3});
    EXPECT_THROW(readExactly(*file, 2, two), DamagedMovie);
    EXPECT_NO_THROW(readExactly(*file, 3, {}));
    EXPECT_THROW(readExactly(*file, 4, {}), DamagedMovie);
}

} // namespace
} // namespace vantoro::testing
