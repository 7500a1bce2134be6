// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/ports/media_toolkit.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {

/// How the fake writer behaves; set before `start`.
struct WriterBehaviour {
    std::exception_ptr creationError;
    std::set<int> refusedChannelCounts;
    bool startSucceeds = true;
    bool appendSucceeds = true;
    bool ready = true;
    WriterStatus statusAfterFinish = WriterStatus::completed;
    double secondsNotWritten = 0;
    std::optional<std::string> error;
};

/// How reading and exporting behave.
struct ExportBehaviour {
    std::exception_ptr openError;
    std::exception_ptr exportError;
    MediaTime duration{48000, 48000};
    bool isWhole = true;
    std::optional<std::size_t> trackCount; ///< absent: as many as the writer had
    bool isMadeAhead = false;              ///< in a file without a name
    std::function<void()> duringExport;
    std::function<void()> duringCopy;        ///< of each track
    std::optional<std::size_t> failingTrack; ///< which cannot be copied
};

class FakeMediaToolkit final : public MediaToolkit {
public:
    /// From now on the file system refuses to create and open files: only the toolkit does that.
    FakeMediaToolkit(CallLog& log, MemoryFileSystem& fileSystem);

    WriterBehaviour writing;
    ExportBehaviour exporting;
    std::size_t trackCount = 0;              ///< of the last writer
    FragmentIntervals intervals;             ///< of the last writer
    FragmentWrittenCallback fragmentWritten; ///< of the last writer
    RecordingTags tags;                      ///< of the last writer
    std::vector<float> exportedGains;        ///< of the last export, in track order
    std::string exportedTitle;               ///< of the last export
    /// Of all exports: number and title.
    std::vector<std::pair<std::size_t, std::string>> copiedTracks;

    std::unique_ptr<RecordingWriter> makeWriter(const std::filesystem::path& location,
                                                FragmentIntervals fragmentIntervals,
                                                FragmentWrittenCallback onFragmentWritten) override;
    std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) override;

    CallLog& log() { return log_; }

    MemoryFileSystem& fileSystem() { return fileSystem_; }

private:
    CallLog& log_;
    MemoryFileSystem& fileSystem_;
};

} // namespace vantoro::testing
