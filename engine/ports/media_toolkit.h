// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "engine/media_time.h"
#include "engine/ports/file_system.h"
#include "engine/ports/file_writer.h"

namespace vantoro {

// Task threads: the toolkit several at a time, what it makes one at a time. Every operation throws
// where it fails, with an error whose text can be shown to the user.

class AssetTrack {
public:
    virtual ~AssetTrack() = default;
    virtual TimeRange timeRange() const = 0;
};

/// A media file opened for reading.
class Asset {
public:
    virtual ~Asset() = default;
    /// In file order.
    virtual std::vector<std::shared_ptr<const AssetTrack>> audioTracks() = 0;
    /// Covered by what is whole in the file; the invalid time when that cannot be told.
    virtual MediaTime duration() = 0;
    /// Whether the tracks hold all that the file does: no byte of it is damaged, and it does not
    /// end in the middle of something. If not, it may be the only copy of what is missing in them.
    /// May read the whole file. Never throws: what cannot be read is not whole.
    virtual bool isWhole() noexcept = 0;
};

class CompositionTrack {
public:
    virtual ~CompositionTrack() = default;
    virtual void insert(TimeRange range, std::shared_ptr<const AssetTrack> source,
                        MediaTime at) = 0;
};

/// A timeline on which tracks lie side by side.
class Composition {
public:
    virtual ~Composition() = default;
    /// Null when it takes no further track. Lives as long as the composition.
    virtual CompositionTrack* addAudioTrack() = 0;
};

/// A constant gain (linear, unclamped) of one composition track, held from `time` on.
struct AudioMixInput {
    const CompositionTrack* track = nullptr;
    float volume = 1.0F;
    MediaTime time = zeroTime;
};

/// In the order in which the tracks were added.
using AudioMix = std::vector<AudioMixInput>;

/// Fraction done, 0 to 1, never falling; called on the exporting thread.
using ExportProgress = std::function<void(double)>;

/// Mixes a composition into one M4A file.
class ExportSession {
public:
    virtual ~ExportSession() = default;
    virtual void setAudioMix(AudioMix mix) = 0;
    /// Returns when the file is complete, synced to disk and closed: `staging`, or the file that is
    /// returned, which has no name yet. On failure a part of it may be left in `staging`.
    /// A requested stop ends it at once, with std::errc::operation_canceled. `progress` may be
    /// empty.
    virtual std::unique_ptr<OutputFile>
    exportTo(OutputFile& staging, const ExportProgress& progress, const std::stop_token& stop) = 0;
};

/// Writing, reading and mixing media files.
class MediaToolkit {
public:
    virtual ~MediaToolkit() = default;
    /// A writer over a QuickTime movie, which it creates: empty, and locked for as long as the
    /// writer lives.
    virtual std::unique_ptr<FileWriter> makeWriter(const std::filesystem::path& location) = 0;
    virtual std::unique_ptr<Asset> openAsset(const std::filesystem::path& location) = 0;
    virtual std::unique_ptr<Composition> makeComposition() = 0;
    /// Null when it cannot export this composition, which must outlive the session.
    virtual std::unique_ptr<ExportSession> makeExportSession(const Composition& composition) = 0;
};

} // namespace vantoro
