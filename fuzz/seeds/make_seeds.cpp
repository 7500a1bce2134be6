// SPDX-License-Identifier: GPL-3.0-or-later

// Writes the fuzzers' initial inputs into a folder: small recordings, whole, truncated and damaged,
// and movies made by hand.

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/seeds/hand_made_movies.h"
#include "media/writing/movie_writer.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::fuzz {

namespace {

using namespace testing;

using Bytes = std::vector<std::byte>;

constexpr std::int64_t fragmentFrames = 4800;

/// A finished movie with fragments of a tenth of a second.
Bytes record(const std::vector<TrackFormat>& tracks, int fragments, const Sound& sound) {
    MemoryFileSystem files;
    media::MovieWriter writer(ffmpeg::codec(), files, "movie.mov",
                              {.first = {1, 10}, .others = {1, 10}});
    std::vector<RecordingTrack*> written;
    written.reserve(tracks.size());
    for (const TrackFormat& track : tracks) {
        written.push_back(writer.addTrack(track));
    }
    bool works = writer.start(SoundBuffer::sessionStart);
    for (std::int64_t frame = 0; frame < fragments * fragmentFrames; frame += fragmentFrames) {
        for (std::size_t index = 0; index < tracks.size(); ++index) {
            const SoundBuffer buffer(frame, fragmentFrames, tracks[index].channels, sound);
            works = works && written[index]->append(buffer.buffer());
        }
    }
    for (RecordingTrack* const track : written) {
        track->end();
    }
    std::promise<void> finished;
    auto done = finished.get_future();
    writer.finish([&finished] { finished.set_value(); });
    if (!works || done.wait_for(std::chrono::seconds(30)) != std::future_status::ready ||
        writer.status() != WriterStatus::completed) {
        throw std::runtime_error("a seed could not be recorded");
    }
    return files.contentOf("movie.mov");
}

Bytes cut(const Bytes& movie, std::size_t size) {
    return {movie.begin(),
            movie.begin() + static_cast<std::ptrdiff_t>(std::min(size, movie.size()))};
}

/// The unfinished movie after its last whole fragment.
Bytes withoutEnd(const Bytes& movie) {
    std::size_t end = 0;
    for (const TopBox& box : topBoxes(movie)) {
        const bool isOfFragment = box.type == "mdat" || box.type == "uuid"; // with its checksum
        end = isOfFragment ? box.end : end;
    }
    return cut(movie, end);
}

std::vector<Seed> recordings() {
    std::vector<Seed> seeds;
    for (int fragments = 1; fragments <= 4; ++fragments) {
        const std::string name = std::to_string(fragments) + "-fragments";
        const Bytes one = record({microphoneTrack}, fragments, silence());
        const Bytes two = record({systemTrack, microphoneTrack}, fragments, silence());
        seeds.push_back({"1-track-" + name, one});
        seeds.push_back({"2-tracks-" + name, two});
        seeds.push_back({"1-track-unfinished-" + name, withoutEnd(one)});
        seeds.push_back({"2-tracks-unfinished-" + name, withoutEnd(two)});
    }
    seeds.push_back({"tone", record({microphoneTrack}, 2, tone(440, 0.5F))});
    return seeds;
}

std::vector<Seed> damagedRecordings() {
    const Bytes movie = record({systemTrack, microphoneTrack}, 3, silence());
    std::vector<Seed> seeds;
    for (std::size_t part = 1; part < 12; ++part) {
        seeds.push_back({"cut-" + std::to_string(part), cut(movie, movie.size() * part / 12)});
        seeds.push_back({"zeros-" + std::to_string(part), cut(movie, movie.size() * part / 12),
                         static_cast<unsigned>(3 * part)});
    }
    const Bytes unfinished = withoutEnd(movie);
    for (std::size_t missing = 1; missing <= 3; ++missing) {
        seeds.push_back({"cut-in-checksum-" + std::to_string(missing),
                         cut(unfinished, unfinished.size() - missing)});
    }
    const auto boxes = topBoxes(movie);
    for (std::size_t index = 0; index < boxes.size(); ++index) {
        Bytes damaged = movie;
        damaged[boxes[index].offset + 5] = std::byte('x');
        seeds.push_back({"box-" + std::to_string(index) + "-of-another-name", std::move(damaged)});
    }
    std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed): the same seeds each time
    for (std::size_t round = 0; round < 24; ++round) {
        Bytes damaged = movie;
        for (std::size_t i = 0; i <= round % 6; ++i) {
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        }
        seeds.push_back({"damaged-" + std::to_string(round), std::move(damaged)});
    }
    return seeds;
}

void write(const std::filesystem::path& folder, const Seed& seed) {
    Bytes bytes{static_cast<std::byte>(seed.tail)};
    bytes.insert(bytes.end(), seed.movie.begin(), seed.movie.end());
    std::ofstream file;
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.open(folder / seed.name, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
}

void writeAll(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& seeds : {recordings(), damagedRecordings(), makeMoviesByHand()}) {
        for (const Seed& seed : seeds) {
            write(folder, seed);
        }
    }
}

} // namespace

} // namespace vantoro::fuzz

int main(int argc, char** argv) {
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() != 2) {
        std::cerr << "usage: make_seeds FOLDER\n";
        return 2;
    }
    try {
        vantoro::fuzz::writeAll(arguments[1]);
    } catch (const std::exception& error) {
        std::cerr << "make_seeds: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
