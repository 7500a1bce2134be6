// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "engine/disk_room.h"
#include "engine/media_time.h"
#include "engine/ports/capture_stream.h"
#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/ports/permissions.h"
#include "engine/recording_types.h"
#include "engine/salvage.h"
#include "engine/sample_path.h"
#include "engine/serial_queue.h"

namespace vantoro {

/// What the recorder needs of its platform. All of it outlives the recorder.
struct RecorderPlatform {
    ScreenCaptureAccess& screenCaptureAccess;
    MicrophoneAccess& microphoneAccess;
    ShareableContent& shareableContent;
    CaptureService& captureService;
    MediaToolkit& mediaToolkit;
    FileSystem& fileSystem;
    Clock& clock;
};

/// Records the computer's sound and a microphone into one M4A file.
///
/// A recording is `start`, then exactly one `stop`, also after an interruption. Both block, belong
/// on a task thread (never the capture queue), and are never run at the same time.
class AudioRecorder final : private CaptureStreamReceiver {
public:
    static constexpr MediaTime checkpointInterval{6000, 600};       // 10 s
    static constexpr MediaTime initialCheckpointInterval{600, 600}; // 1 s

    explicit AudioRecorder(const RecorderPlatform& platform);
    AudioRecorder(const AudioRecorder&) = delete;
    AudioRecorder& operator=(const AudioRecorder&) = delete;
    /// What a running recording has captured stays in its temporary file.
    ~AudioRecorder() override;

    /// On return capture runs; the file begins with the first buffer. Throws a `RecordingError`, or
    /// the platform's error unchanged; then nothing runs and nothing is left in the folder.
    void start(const RecordingOptions& options);

    /// With which gains `stop` will probably mix: the mix may be made ahead. Any thread, at any
    /// time; does not block.
    void expectVolumes(float systemVolume, float microphoneVolume);

    /// Ends the recording and returns the place of the final file, mixed with these linear gains.
    /// Throws a `RecordingError`, or the platform's error unchanged; then the temporary file is
    /// kept if sound was written to it. In either case another recording can be started.
    std::filesystem::path stop(float systemVolume, float microphoneVolume);

    /// After a `stop` that threw: whether the temporary file is in the folder, and sound can be
    /// read from it. Until the next `start`; not beside a `stop`.
    bool hasKeptRecording() const noexcept { return hasKeptRecording_; }

    /// Finishes the recordings in the folder that were interrupted; see `salvage.h`. Blocks. May
    /// run beside all else: a recording in work is passed over.
    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::stop_token& stop);

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
    /// How far `stop` is with the final file. On the thread of `stop`.
    ExportProgress onExportProgress;

private:
    void checkPermissions(const RecordingOptions& options);
    bool requestMicrophonePermission();
    Display chooseDisplay();
    void prepareWriter(const RecordingOptions& options);
    void passOnExpectedVolumes();
    void startStream(const RecordingOptions& options, Display display);

    void stopStream();
    void finishWriting();
    bool tellOfLoss();
    void resetAfterFailedStop();
    void resetKeepingWhatWasWritten();
    void reset(bool removeTemporaryFile);

    void didOutputSampleBuffer(const SampleBuffer& buffer, StreamOutputType type) override;
    void didLoseSound(StreamOutputType type, double seconds) override;
    void streamDidStop(std::exception_ptr error) override;
    void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) override;

    RecorderPlatform platform_;

    // Of the current recording; empty when idle. Written by `start` and `stop`.
    std::filesystem::path temporaryURL_;
    std::filesystem::path outputDirectory_;
    bool hasSystemAudioTrack_ = false;
    bool hasKeptRecording_ = false; // of the latest stop

    // Touched on the capture queue only.
    SamplePath samplePath_;
    std::optional<std::pair<float, float>> expectedVolumes_; // of the system and the microphone
    std::shared_ptr<CaptureStream> stream_;

    SerialQueue captureQueue_{"com.vantoro.capture"}; // last: it ends before what it works on
};

} // namespace vantoro
