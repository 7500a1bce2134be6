// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "engine/media_time.h"
#include "engine/ports/file_system.h"

namespace vantoro {

/// Fraction done, 0 to 1, never falling; called on the exporting thread.
using ExportProgress = std::function<void(double)>;

/// A recording opened for reading. Task threads, one at a time. Every operation throws where it
/// fails, with an error whose text can be shown to the user.
class Recording {
public:
    virtual ~Recording() = default;
    /// How many tracks of sound it has.
    virtual std::size_t trackCount() const = 0;
    /// Covered by what is whole in the file; the invalid time when that cannot be told.
    virtual MediaTime duration() const = 0;
    /// Whether the tracks hold all that the file does: no byte of it is damaged, and it does not
    /// end in the middle of something. If not, it may be the only copy of what is missing in them.
    /// May read the whole file. Never throws: what cannot be read is not whole.
    virtual bool isWhole() const noexcept = 0;

    /// Mixes all tracks from time zero on into one M4A file, each at its linear gain, unclamped, in
    /// file order. Returns when the file is complete, synced to disk and closed: `staging`, or the
    /// file that is returned, which has no name yet. On failure a part of it may be left in
    /// `staging`. A requested stop ends it at once, with std::errc::operation_canceled. `progress`
    /// may be empty. Throws `RecordingError` (`exportFailed`) where nothing can be coded.
    virtual std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes, OutputFile& staging,
                                            const ExportProgress& progress,
                                            const std::stop_token& stop) = 0;
};

} // namespace vantoro
