// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "engine/files/disk_room.h"
#include "engine/ports/media_toolkit.h"
#include "engine/recorder/level_meter.h"
#include "engine/recorder/salvage.h"
#include "engine/recorder/sample_path.h"
#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// Records system audio and a microphone into one M4A file: the interface for the controlling code.
///
/// A recording is `start`, then exactly one `stop`, even after an interruption. Both block, run on
/// a task thread, and never overlap; salvage may run in parallel.
class Recorder {
public:
    Recorder() = default;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    /// A running recording keeps its temporary file.
    virtual ~Recorder() = default;

    /// Returns once capture runs; the file starts with the first buffer. Throws `RecordingError`,
    /// or the platform's error unchanged; then nothing runs, and nothing is left in the folder.
    virtual void start(const RecordingOptions& options) = 0;

    /// The gains that `stop` will probably use, so that the mix can be made ahead. Any thread, at
    /// any time; does not block.
    virtual void expectVolumes(float systemVolume, float microphoneVolume) = 0;

    /// Marks this moment of a running recording, for its file's chapters. The mark is as safe as
    /// the sound of that moment. Any thread; does not block.
    virtual void mark(std::string text) = 0;

    /// Ends the recording, mixes it with these linear gains, and returns the final file's path.
    /// Throws like `start`, and then keeps the temporary file if it holds sound. Another recording
    /// can start either way.
    virtual std::filesystem::path stop(float systemVolume, float microphoneVolume) = 0;

    /// After `stop` threw: whether the temporary file was kept with readable sound. Valid until the
    /// next `start`; not during `stop`.
    virtual bool hasKeptRecording() const noexcept = 0;

    /// Finishes interrupted recordings in the folder; `trackNames` as in the options, otherwise see
    /// `salvage.h`.
    virtual SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                                      const std::optional<TrackNames>& trackNames,
                                                      const std::stop_token& stop) = 0;

    // Set before `start`, not during a recording. Each may be empty.

    /// Capture failed, or the file cannot be written; what exists waits for `stop`. Capture queue.
    CaptureInterruptedCallback onCaptureInterrupted;
    /// Capture queue.
    AudioLevelCallback onAudioLevel;
    /// A source went silent or came back. Capture queue.
    SourceConditionCallback onSourceCondition;
    /// Sound was lost. On the capture queue, or the thread of `stop`.
    SoundLossCallback onSoundLoss;
    /// The sources' own files could not be written. On the thread of `stop`.
    TracksNotKeptCallback onTracksNotKept;
    /// The disk is filling up. Once only the final file fits, the receiver must call `stop`.
    DiskRoomCallback onDiskRoom;
    /// During `stop`, on its thread: everything captured is on disk.
    std::function<void()> onRecordingSafe;
    /// Progress of `stop` on the final file, at most ten times a second. On its thread.
    ExportProgress onExportProgress;
    /// Likewise of a salvage on all its files.
    ExportProgress onSalvageProgress;
};

} // namespace vantoro
