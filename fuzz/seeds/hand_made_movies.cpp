// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/seeds/hand_made_movies.h"

#include <cstdint>
#include <utility>

#include "fuzz/seeds/hand_made_descriptions.h"
#include "media/boxes/box_writer.h"
#include "media/codec/aac.h"

namespace vantoro::fuzz {

namespace {

using media::BoxWriter;
using media::framesPerSecond;
using media::packetFrames;

constexpr unsigned largestTail = 37;
constexpr std::uint32_t largeSizeFollows = 1;

struct HandMadeTrack {
    std::uint32_t id = 1;
    std::string kind = "soun";
    std::uint32_t timescale = framesPerSecond;
    std::uint32_t defaultSize = 0;
    Boxes description = nullptr; ///< of the codec, if any
};

/// One track's packets in a fragment; by default one of 1024 frames.
struct HandMadePart {
    std::uint32_t track = 1;
    std::uint32_t start = 0;
    std::uint32_t count = 1;
    std::uint32_t size = 4;   ///< of each packet; 0: the header's default
    std::uint32_t begin = 8;  ///< of the packets, from the content box
    unsigned repetitions = 1; ///< of the packets, at the same offset
};

void writeCoding(BoxWriter& movie, const Boxes& description) {
    movie.box("minf", [&] {
        movie.box("stbl", [&] {
            movie.fullBox("stsd", 0, [&] {
                movie.u32(1);
                description(movie);
            });
        });
    });
}

void writeHeader(BoxWriter& movie, const std::vector<HandMadeTrack>& tracks) {
    movie.box("moov", [&] {
        for (const HandMadeTrack& track : tracks) {
            movie.box("trak", [&] {
                movie.fullBox("tkhd", 7, [&] {
                    movie.zeros(8);
                    movie.u32(track.id);
                });
                movie.box("mdia", [&] {
                    movie.fullBox("mdhd", 0, [&] {
                        movie.zeros(8);
                        movie.u32(track.timescale);
                    });
                    movie.fullBox("hdlr", 0, [&] {
                        movie.text("mhlr");
                        movie.text(track.kind);
                    });
                    if (track.description) {
                        writeCoding(movie, track.description);
                    }
                });
            });
        }
        movie.box("mvex", [&] {
            for (const HandMadeTrack& track : tracks) {
                movie.fullBox("trex", 0, [&] {
                    movie.u32(track.id);
                    movie.u32(1);
                    movie.u32(packetFrames);
                    movie.u32(track.defaultSize);
                });
            }
        });
    });
}

void writePart(BoxWriter& movie, const HandMadePart& part, std::uint32_t contentOffset) {
    movie.box("traf", [&] {
        movie.fullBox("tfhd", part.size != 0 ? 0x20010 : 0x20000, [&] {
            movie.u32(part.track);
            if (part.size != 0) {
                movie.u32(part.size);
            }
        });
        movie.fullBox("tfdt", 0, [&] { movie.u32(part.start); });
        for (unsigned i = 0; i < part.repetitions; ++i) {
            movie.fullBox("trun", 1, [&] {
                movie.u32(part.count);
                movie.u32(contentOffset + part.begin);
            });
        }
    });
}

void writeDescription(BoxWriter& movie, const std::vector<HandMadePart>& parts) {
    const auto description = [&](BoxWriter& to, std::uint32_t contentOffset) {
        to.box("moof", [&] {
            for (const HandMadePart& part : parts) {
                writePart(to, part, contentOffset);
            }
        });
    };
    BoxWriter measured;
    description(measured, 0);
    description(movie, static_cast<std::uint32_t>(measured.take().size()));
}

void writeFragment(BoxWriter& movie, const std::vector<HandMadePart>& parts,
                   std::size_t contentSize = 16) {
    writeDescription(movie, parts);
    movie.box("mdat", [&] { movie.zeros(contentSize); });
}

std::vector<std::byte> make(const Boxes& write) {
    BoxWriter movie;
    write(movie);
    return movie.take();
}

/// A header with one track, then other boxes.
std::vector<std::byte> afterHeader(const Boxes& write, std::uint32_t defaultSize = 0) {
    return make([&](BoxWriter& movie) {
        writeHeader(movie, {{.defaultSize = defaultSize}});
        write(movie);
    });
}

std::vector<std::byte> oneFragment(const std::vector<HandMadePart>& parts) {
    return afterHeader([&](BoxWriter& movie) { writeFragment(movie, parts); });
}

/// A fragment whose content has a 64-bit size.
std::vector<std::byte> largeContent(std::uint64_t size, const HandMadePart& part,
                                    std::uint32_t defaultSize = 0) {
    return afterHeader(
        [&](BoxWriter& movie) {
            writeDescription(movie, {part});
            movie.u32(largeSizeFollows);
            movie.text("mdat");
            movie.u64(size);
            movie.zeros(8);
        },
        defaultSize);
}

std::vector<std::byte> manyTracks(std::uint32_t count) {
    return make([&](BoxWriter& movie) {
        std::vector<HandMadeTrack> tracks;
        std::vector<HandMadePart> parts;
        for (std::uint32_t id = 1; id <= count; ++id) {
            tracks.push_back({.id = id});
            parts.push_back({.track = id});
        }
        writeHeader(movie, tracks);
        writeFragment(movie, parts);
    });
}

void writeNested(BoxWriter& movie, const char* type, int depth) {
    movie.box(type, [&] {
        if (depth > 0) {
            writeNested(movie, type, depth - 1);
        }
    });
}

std::vector<Seed> wholeMovies() {
    std::vector<Seed> seeds;
    seeds.push_back({"one-packet", oneFragment({{}})});
    seeds.push_back({"three-fragments", afterHeader([](BoxWriter& movie) {
                         for (std::uint32_t i = 0; i < 3; ++i) {
                             writeFragment(movie, {{.start = i * 2 * packetFrames, .count = 2}});
                         }
                     })});
    seeds.push_back({"sixteen-tracks", manyTracks(16)});
    seeds.push_back({"sound-and-picture", make([](BoxWriter& movie) {
                         writeHeader(movie,
                                     {{.id = 1, .kind = "vide", .timescale = 600}, {.id = 2}});
                         writeFragment(movie, {{.track = 1}, {.track = 2}});
                     })});
    seeds.push_back({"boxes-before-the-header", make([](BoxWriter& movie) {
                         movie.box("ftyp", [&] { movie.text("qt  "); });
                         for (int i = 0; i < 14; ++i) {
                             movie.box("wide", [] {});
                         }
                         writeHeader(movie, {{}});
                         writeFragment(movie, {{}});
                     })});
    return seeds;
}

/// Tracks with each version of a codec description, and with an unknown one.
std::vector<Seed> describedMovies() {
    std::vector<Seed> seeds;
    for (const unsigned version : {0U, 1U, 2U}) {
        for (const unsigned depth : {0U, 1U, 100U}) {
            seeds.push_back({"description-of-version-" + std::to_string(version) + "-in-" +
                                 std::to_string(depth) + "-boxes",
                             make([&](BoxWriter& movie) {
                                 writeHeader(
                                     movie,
                                     {{.description = describeSound(version, version + 1, depth)}});
                                 writeFragment(movie, {{}});
                             })});
        }
    }
    return seeds;
}

std::vector<Seed> oddSizes() {
    std::vector<Seed> seeds;
    seeds.push_back({"size-of-0", afterHeader([](BoxWriter& movie) {
                         writeDescription(movie, {{}});
                         movie.u32(0);
                         movie.text("mdat");
                         movie.zeros(16);
                     })});
    seeds.push_back({"size-of-64-bits", largeContent(24, {.begin = 16})});
    seeds.push_back({"size-too-large", largeContent(~std::uint64_t{0}, {.begin = 16})});
    seeds.push_back({"hundred-gigabytes-of-content",
                     largeContent(90'000'000'000, {.count = 3, .begin = 16}), largestTail});
    seeds.push_back({"as-many-packets-as-can-be",
                     largeContent(90'000'000'000, {.count = 65536, .size = 0, .begin = 16}, 65536),
                     largestTail});
    seeds.push_back({"large-header-of-zeros", make([](BoxWriter& movie) {
                         movie.box("moov", [&] { movie.leaveOut((1U << 20U) - 8); });
                     }),
                     21});
    seeds.push_back({"nothing-but-zeros", {}, largestTail});
    return seeds;
}

std::vector<Seed> impossibleMovies() {
    std::vector<Seed> seeds;
    seeds.push_back({"seventeen-tracks", manyTracks(17)});
    seeds.push_back({"two-tracks-of-one-number", make([](BoxWriter& movie) {
                         writeHeader(movie, {{.id = 1}, {.id = 1}});
                         writeFragment(movie, {{}});
                     })});
    seeds.push_back({"overlapping-packets", oneFragment({{.count = 2, .repetitions = 4}})});
    seeds.push_back({"a-track-twice", oneFragment({{}, {.start = packetFrames}})});
    seeds.push_back({"packets-behind-the-content", oneFragment({{.count = 5}})});
    seeds.push_back({"no-packets", oneFragment({{.count = 0}})});
    seeds.push_back({"does-not-go-on", afterHeader([](BoxWriter& movie) {
                         writeFragment(movie, {{}});
                         writeFragment(movie, {{.start = 7}});
                     })});
    seeds.push_back({"many-boxes-and-no-header", make([](BoxWriter& movie) {
                         for (int i = 0; i < 500; ++i) {
                             movie.box("wide", [] {});
                         }
                     })});
    seeds.push_back(
        {"nested-header", make([](BoxWriter& movie) { writeNested(movie, "moov", 200); })});
    seeds.push_back({"nested-description", afterHeader([](BoxWriter& movie) {
                         writeNested(movie, "moof", 200);
                         movie.box("mdat", [] {});
                     })});
    seeds.push_back({"overlapping-boxes", afterHeader([](BoxWriter& movie) {
                         movie.box("moof", [&] {
                             writePart(movie, {}, 64);
                             movie.leaveOut(8);
                         });
                         movie.box("mdat", [&] { movie.zeros(16); });
                     })});
    return seeds;
}

} // namespace

std::vector<Seed> makeMoviesByHand() {
    std::vector<Seed> all;
    for (auto& seeds : {wholeMovies(), describedMovies(), oddSizes(), impossibleMovies()}) {
        all.insert(all.end(), seeds.begin(), seeds.end());
    }
    return all;
}

} // namespace vantoro::fuzz
