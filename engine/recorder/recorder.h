// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

#include "engine/files/disk_room.h"
#include "engine/ports/media_toolkit.h"
#include "engine/recorder/level_meter.h"
#include "engine/recorder/salvage.h"
#include "engine/recorder/sample_path.h"
#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// Records the computer's sound and a microphone into one M4A file, as those who control it see it.
///
/// A recording is `start`, then exactly one `stop`, also after an interruption. Both block, belong
/// on a task thread, and are never run at the same time; salvage may run beside either.
class Recorder {
public:
    Recorder() = default;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    /// What a running recording has captured stays in its temporary file.
    virtual ~Recorder() = default;

    /// On return capture runs; the file begins with the first buffer. Throws a `RecordingError`, or
    /// the platform's error unchanged; then nothing runs and nothing is left in the folder.
    virtual void start(const RecordingOptions& options) = 0;

    /// With which gains `stop` will probably mix: the mix may be made ahead. Any thread, at any
    /// time; does not block.
    virtual void expectVolumes(float systemVolume, float microphoneVolume) = 0;

    /// Ends the recording and returns the place of the final file, mixed with these linear gains.
    /// Throws a `RecordingError`, or the platform's error unchanged; then the temporary file is
    /// kept if sound was written to it. In either case another recording can be started.
    virtual std::filesystem::path stop(float systemVolume, float microphoneVolume) = 0;

    /// After a `stop` that threw: whether the temporary file is in the folder, and sound can be
    /// read from it. Until the next `start`; not beside a `stop`.
    virtual bool hasKeptRecording() const noexcept = 0;

    /// Finishes the recordings in the folder that were interrupted; see `salvage.h`. A recording in
    /// work is passed over. Returns a moment after a stop was requested, also in the middle of one
    /// of them, which then stays as it was.
    virtual SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                                      const std::stop_token& stop) = 0;

    // Set before `start`, and not while a recording runs. Each may be empty.

    /// Capture broke, or the file cannot be written: what there is waits for `stop`. Capture queue.
    CaptureInterruptedCallback onCaptureInterrupted;
    /// Capture queue.
    AudioLevelCallback onAudioLevel;
    /// A source gives no sound, or does again. Capture queue.
    SourceConditionCallback onSourceCondition;
    /// Sound was lost: on the capture queue, or on the thread of `stop`.
    SoundLossCallback onSoundLoss;
    /// The disk gets full. When there is only room for the final file left, the receiver is
    /// expected to call `stop`.
    DiskRoomCallback onDiskRoom;
    /// During `stop`: all that was captured is on the disk. Whatever becomes of the final file, it
    /// can be made again. On the thread of `stop`.
    std::function<void()> onRecordingSafe;
    /// How far `stop` or a salvage is with the final file. On its thread.
    ExportProgress onExportProgress;
};

} // namespace vantoro
