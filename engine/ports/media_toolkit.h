// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>

#include "engine/ports/recording.h"
#include "engine/ports/recording_writer.h"

namespace vantoro {

/// Writes and opens recordings. Task threads, several at a time. Errors carry a text for the user.
class MediaToolkit {
public:
    virtual ~MediaToolkit() = default;
    /// Creates a QuickTime movie, empty and locked for the writer's lifetime, and returns its
    /// writer. `onFragmentWritten` may be empty; called until the writer is destroyed.
    virtual std::unique_ptr<RecordingWriter>
    makeWriter(const std::filesystem::path& location, FragmentIntervals intervals,
               FragmentWrittenCallback onFragmentWritten) = 0;
    /// Opens a recording that is no longer being written.
    virtual std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) = 0;
};

} // namespace vantoro
