// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>

#include "engine/ports/recording.h"
#include "engine/ports/recording_writer.h"

namespace vantoro {

/// Writes recordings, and opens them. Task threads, several at a time. Every operation throws where
/// it fails, with an error whose text can be shown to the user.
class MediaToolkit {
public:
    virtual ~MediaToolkit() = default;
    /// A writer over a QuickTime movie, which it creates: empty, and locked for as long as the
    /// writer lives. `onFragmentWritten` may be empty, and is called until the writer is destroyed.
    virtual std::unique_ptr<RecordingWriter>
    makeWriter(const std::filesystem::path& location, FragmentIntervals intervals,
               FragmentWrittenCallback onFragmentWritten) = 0;
    /// A recording that nobody writes any more.
    virtual std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) = 0;
};

} // namespace vantoro
