// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/media/support/external_programs.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

std::string run(const std::string& command) {
    const TemporaryFolder folder;
    const std::filesystem::path errors = folder.path() / "errors";
    FILE* const pipe = popen(("( " + command + " ) 2>" + errors.string()).c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return {};
    }
    std::string output;
    std::array<char, 65536> piece{};
    for (std::size_t count = 0; (count = std::fread(piece.data(), 1, piece.size(), pipe)) > 0;) {
        output.append(piece.data(), count);
    }
    const int status = pclose(pipe);
    std::ifstream file(errors);
    const std::string said{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(status, 0) << command;
    EXPECT_EQ(said, "") << command;
    return output;
}

std::vector<std::map<std::string, std::string>> probe(const std::filesystem::path& file) {
    std::vector<std::map<std::string, std::string>> sections;
    std::istringstream lines(
        run("ffprobe -v error -show_streams -show_format -of default " + file.string()));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t separator = line.find('=');
        if (line == "[STREAM]" || line == "[FORMAT]") {
            sections.emplace_back();
        } else if (separator != std::string::npos && !sections.empty()) {
            sections.back()[line.substr(0, separator)] = line.substr(separator + 1);
        }
    }
    return sections;
}

std::string exifTag(const std::filesystem::path& file, const std::string& tag) {
    const auto text = run("exiftool -s3 -" + tag + " " + file.string());
    return text.substr(0, text.find('\n'));
}

std::int64_t firstPacketOf(const std::filesystem::path& file, int track) {
    return std::stoll(
        run("ffprobe -v error -show_entries packet=pts -read_intervals %+#1 -of csv=p=0"
            " -select_streams " +
            std::to_string(track) + " " + file.string()));
}

std::int64_t framesOf(const std::filesystem::path& file, int track) {
    const auto stream = probe(file).at(static_cast<std::size_t>(track));
    // Of a fragmented track, `ffprobe` adds up the packets. From FFmpeg 7 on, the track's start
    // does not count the priming among them.
    const bool isFragmented = stream.at("nb_frames") == "N/A";
    return (isFragmented ? firstPacketOf(file, track) : std::stoll(stream.at("start_pts"))) +
           std::stoll(stream.at("duration_ts"));
}

std::vector<float> decode(const std::filesystem::path& file, int track, int channel) {
    const std::string pan = std::to_string(channel);
    const std::string bytes = run("ffmpeg -nostdin -v error -copyts -i " + file.string() +
                                  " -map 0:a:" + std::to_string(track) +
                                  " -af 'atrim=start=0,pan=mono|c0=c" + pan + "' -f f32le -");
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

} // namespace vantoro::testing
