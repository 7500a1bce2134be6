// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace vantoro::testing {

/// Runs a shell command and returns its standard output; what it says on standard error, or a
/// status other than 0, fails the test.
std::string run(const std::string& command);

/// What the `ffprobe` program says about the streams of a file and the file itself, each as "key"
/// to "value"; the file itself comes last.
std::vector<std::map<std::string, std::string>> probe(const std::filesystem::path& file);

/// What the `exiftool` program says about one tag of a file; empty if there is none.
std::string exifTag(const std::filesystem::path& file, const std::string& tag);

/// When an audio track's first packet begins, in frames, as the `ffprobe` program tells it.
std::int64_t firstPacketOf(const std::filesystem::path& file, int track);

/// Where an audio track ends, in frames, as the `ffprobe` program tells it.
std::int64_t framesOf(const std::filesystem::path& file, int track);

/// One channel of an audio track from time zero on, as the `ffmpeg` program decodes it: whole
/// packets, so up to 1023 frames longer than the track.
std::vector<float> decode(const std::filesystem::path& file, int track, int channel = 0);

} // namespace vantoro::testing
