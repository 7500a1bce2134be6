// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

#include "engine/disk_room.h"
#include "engine/level_meter.h"
#include "engine/recording_types.h"
#include "engine/salvage.h"
#include "engine/sample_path.h"

namespace vantoro {

/// What a recorder tells of by itself, on threads of its own or of its caller.
struct RecorderCallbacks {
    CaptureInterruptedCallback onCaptureInterrupted;
    AudioLevelCallback onAudioLevel;
    SourceConditionCallback onSourceCondition;
    SoundLossCallback onSoundLoss;
    DiskRoomCallback onDiskRoom;
    /// During `stop`: all that was captured is on the disk, what follows can be done again.
    std::function<void()> onRecordingSafe;
};

/// The recorder as it is controlled: see `AudioRecorder`, which does all this. What blocks is
/// called on task threads: `start` and `stop` never at the same time, salvage beside either.
class Recorder {
public:
    virtual ~Recorder() = default;

    /// Once, before anything else.
    virtual void setCallbacks(RecorderCallbacks callbacks) = 0;

    /// Returns when capture runs, or throws.
    virtual void start(const RecordingOptions& options) = 0;

    /// With which gains `stop` will probably be called: the mix may be made ahead. Any thread, at
    /// any time; does not block.
    virtual void expectVolumes(float systemVolume, float microphoneVolume) = 0;

    /// Returns the final file, mixed with these linear gains; or throws, and what was captured
    /// stays in the recording folder.
    virtual std::filesystem::path stop(float systemVolume, float microphoneVolume) = 0;

    /// After a `stop` that threw: whether there is anything in the folder that a salvage can make a
    /// recording of. Until the next `start`; any thread, and does not block.
    virtual bool hasKeptRecording() const = 0;

    /// Makes final files of interrupted recordings in the folder. Never throws. Returns a moment
    /// after a stop was requested, also in the middle of one of them, which then stays as it was.
    virtual SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                                      const std::stop_token& stop) = 0;
};

} // namespace vantoro
