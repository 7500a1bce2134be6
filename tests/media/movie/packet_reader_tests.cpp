// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/packet_reader.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "media/boxes/box_writer.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

constexpr std::uint32_t packetSize = 60000;

/// A fragment of more large packets than one read holds, each filled with its number.
std::shared_ptr<Movie> movieOf(std::uint32_t packets) {
    const auto describe = [&](std::uint64_t content) {
        BoxWriter writer;
        writer.box("moof", [&] {
            writer.box("traf", [&] {
                writer.fullBox("tfhd", 0x18, [&] {
                    writer.u32(1);
                    writer.u32(1024);
                    writer.u32(packetSize);
                });
                writer.fullBox("tfdt", 0, [&] { writer.u32(0); });
                writer.fullBox("trun", 1, [&] {
                    writer.u32(packets);
                    writer.u32(content);
                });
            });
        });
        writer.box("mdat", [&] {
            for (std::uint32_t packet = 0; packet < packets; ++packet) {
                writer.bytes(std::vector(packetSize, static_cast<std::byte>(packet)));
            }
        });
        return writer.take();
    };
    MemoryFileSystem files;
    files.put("movie.mov", describe(describe(0).size() - std::size_t{packets} * packetSize));
    auto movie = std::make_shared<Movie>();
    movie->file = files.open("movie.mov");
    TrackHeader track;
    track.id = 1;
    track.isAudio = true;
    movie->scan.tracks.push_back(track);
    movie->scan.fragments = {0};
    movie->scan.starts = {0};
    return movie;
}

TEST(PacketReader, readsConsecutivePacketsFromAnyOneOn) {
    constexpr std::uint32_t packets = 25;
    PacketReader reader(movieOf(packets), 0);
    for (const std::uint32_t from : {0U, 20U, 3U, 0U, 24U, 25U}) {
        reader.seek(from);
        for (std::uint32_t packet = from; packet < packets; ++packet) {
            const auto read = reader.next();
            ASSERT_TRUE(read) << packet;
            EXPECT_EQ(std::vector(read->begin(), read->end()),
                      std::vector(packetSize, static_cast<std::byte>(packet)));
        }
        EXPECT_FALSE(reader.next());
    }
}

TEST(PacketReader, beginsWithTheFirstPacket) {
    PacketReader reader(movieOf(2), 0);
    const auto read = reader.next();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->front(), std::byte{0});
}

TEST(PacketReader, findsNothingInAMovieWithoutFragments) {
    const auto movie = std::make_shared<Movie>();
    movie->scan.tracks.resize(1);
    PacketReader reader(movie, 0);
    EXPECT_FALSE(reader.next());
    for (const std::int64_t packet : {0, 3}) {
        reader.seek(packet);
        EXPECT_FALSE(reader.next()) << packet;
    }
}

} // namespace
} // namespace vantoro::testing
