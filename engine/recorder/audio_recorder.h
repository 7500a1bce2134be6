// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "engine/files/disk_room.h"
#include "engine/media_time.h"
#include "engine/ports/capture_stream.h"
#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/ports/permissions.h"
#include "engine/recorder/recorder.h"
#include "engine/recorder/salvage.h"
#include "engine/recorder/sample_path.h"
#include "engine/recorder/track_mixing.h"
#include "engine/recording_types.h"
#include "engine/serial_queue.h"

namespace vantoro {

/// The platform ports of the recorder; all outlive it.
struct RecorderPlatform {
    CaptureAccess& captureAccess;
    MicrophoneAccess& microphoneAccess;
    CaptureService& captureService;
    MediaToolkit& mediaToolkit;
    FileSystem& fileSystem;
    Clock& clock;
};

/// The recorder, built on its platform's ports.
class AudioRecorder final : public Recorder, private CaptureStreamReceiver {
public:
    static constexpr MediaTime checkpointInterval{6000, 600};       // 10 s
    static constexpr MediaTime initialCheckpointInterval{600, 600}; // 1 s

    explicit AudioRecorder(const RecorderPlatform& platform);
    ~AudioRecorder() override;

    void start(const RecordingOptions& options) override;
    void expectVolumes(float systemVolume, float microphoneVolume) override;
    void mark(std::string text) override;
    std::filesystem::path stop(float systemVolume, float microphoneVolume) override;

    bool hasKeptRecording() const noexcept override { return hasKeptRecording_; }

    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::optional<TrackNames>& trackNames,
                                              const std::stop_token& stop) override;

private:
    void checkPermissions(const RecordingOptions& options);
    bool mayCapture();
    bool requestMicrophonePermission();
    void prepareWriter(const RecordingOptions& options);
    void forwardExpectedVolumes();
    void startStream(const RecordingOptions& options);

    void stopStream();
    void finishWriting();
    bool reportLoss();
    std::filesystem::path exportFinal(const TrackVolume& volumeOfTrack, bool isAllWritten);
    bool hasStartedWriting();
    void resetAfterFailedStop();
    void resetKeepingRecording();
    void reset(bool removeTemporaryFile);

    void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) override;
    void didLoseSound(AudioLevelSource source, double seconds) override;
    void streamDidStop(std::exception_ptr error) override;
    void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) override;

    RecorderPlatform platform_;

    // The current recording's; empty when idle. Set by `start` and `stop`.
    std::filesystem::path temporaryURL_;
    std::filesystem::path outputDirectory_;
    std::optional<TrackNames> trackNames_;
    bool hasSystemAudioTrack_ = false;
    bool hasKeptRecording_ = false; // after the latest stop

    // Touched on the capture queue only.
    SamplePath samplePath_;
    std::optional<std::pair<float, float>> expectedVolumes_; // system, microphone
    std::shared_ptr<CaptureStream> stream_;

    SerialQueue captureQueue_{"com.vantoro.capture"}; // last: destroyed before what its work uses
};

} // namespace vantoro
