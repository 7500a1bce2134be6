// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "engine/media_time.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// Fraction done, 0 to 1, never decreasing. Called on the exporting thread.
using ExportProgress = std::function<void(double)>;

/// The title of a single track's file.
struct TrackTitle {
    std::string title;  ///< unless the recording has its own
    std::string suffix; ///< follows either
};

/// A recording open for reading. Task threads, one at a time. Errors carry a text for the user.
class Recording {
public:
    virtual ~Recording() = default;
    virtual std::size_t trackCount() const = 0;
    /// Duration of the intact part of the file; the invalid time if unknown.
    virtual MediaTime duration() const = 0;
    /// Whether the tracks hold everything in the file: no damage, no truncated end. May read the
    /// whole file; false if it is unreadable. If false, it may be the only copy of missing sound.
    virtual bool isWhole() const noexcept = 0;

    /// Mixes all tracks from time zero into one M4A file, each at its linear gain (in file order),
    /// without clamping, and tags it as the recording; `title` if that has none. Returns once the
    /// file is complete, synced and closed: `staging`, or the returned file, which has no name yet.
    /// On failure `staging` may hold part of it. A requested stop ends the mix at once with
    /// std::errc::operation_canceled. `progress` may be empty. Throws `RecordingError`
    /// (`exportFailed`) if nothing can be encoded.
    virtual std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes,
                                            const std::string& title, OutputFile& staging,
                                            const ExportProgress& progress,
                                            const std::stop_token& stop) = 0;

    virtual int channelsOf(std::size_t track) const = 0;

    /// Copies one track from time zero into an M4A file without coding it again, with silence for
    /// damaged packets. Otherwise as `mix`; the file is always `staging`.
    virtual void copyTrack(std::size_t track, const TrackTitle& title, OutputFile& staging,
                           const ExportProgress& progress, const std::stop_token& stop) = 0;
};

} // namespace vantoro
