// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/audio_recorder.h"
#include "engine/recorder/progress_pace.h"

#include <algorithm>
#include <future>
#include <utility>

#include "engine/files/disk_room.h"
#include "engine/files/file_names.h"
#include "engine/recorder/track_keeping.h"

namespace vantoro {

namespace {

constexpr TrackFormat systemAudioTrack{.channels = 2, .bitRate = 192000};
constexpr TrackFormat microphoneTrack{.channels = 1, .bitRate = 96000};

RecordingTrack* makeWriterInput(RecordingWriter& writer, TrackFormat format) {
    RecordingTrack* const track = writer.addTrack(format);
    if (track == nullptr) {
        throw RecordingError(RecordingError::Case::writerSetupFailed);
    }
    return track;
}

/// Bits per second of all tracks together.
int totalBitRate(const RecordingOptions& options) {
    return (options.captureSystemAudio ? systemAudioTrack.bitRate : 0) +
           (options.captureMicrophone ? microphoneTrack.bitRate : 0);
}

} // namespace

AudioRecorder::AudioRecorder(const RecorderPlatform& platform)
    : platform_(platform),
      samplePath_(platform.clock, onAudioLevel, onSourceCondition, onCaptureInterrupted) {}

AudioRecorder::~AudioRecorder() {
    captureQueue_.sync([this] { stream_.reset(); });
    resetKeepingRecording();
}

void AudioRecorder::start(const RecordingOptions& options) {
    checkPermissions(options);
    platform_.fileSystem.createFolders(options.outputDirectory);
    try {
        prepareWriter(options);
        startStream(options);
    } catch (...) {
        resetKeepingRecording();
        throw;
    }
}

void AudioRecorder::checkPermissions(const RecordingOptions& options) {
    if (!options.captureSystemAudio && !options.captureMicrophone) {
        throw RecordingError(RecordingError::Case::noAudioSource);
    }
    if (!mayCapture()) {
        throw RecordingError(RecordingError::Case::screenPermissionDenied);
    }
    if (options.captureMicrophone && !requestMicrophonePermission()) {
        throw RecordingError(RecordingError::Case::microphonePermissionDenied);
    }
}

/// Asks twice: the first request may wake a service that answers only the second.
bool AudioRecorder::mayCapture() {
    return platform_.captureAccess.isGranted() || platform_.captureAccess.isGranted();
}

bool AudioRecorder::requestMicrophonePermission() {
    const auto status = platform_.microphoneAccess.status();
    return status == AuthorizationStatus::authorized ||
           (status == AuthorizationStatus::notDetermined && platform_.microphoneAccess.request());
}

void AudioRecorder::prepareWriter(const RecordingOptions& options) {
    const auto temporaryURL = options.outputDirectory / temporaryFileName();
    const int bitRate = totalBitRate(options);
    const auto room =
        std::make_shared<RoomWatch>(platform_.fileSystem, options.outputDirectory, bitRate,
                                    options.trackNames ? bitRate : 0, onDiskRoom);
    auto writer = platform_.mediaToolkit.makeWriter(
        temporaryURL, {.first = initialCheckpointInterval, .others = checkpointInterval},
        [room](MediaTime recorded, std::uint64_t waitingBytes) {
            room->check(recorded, waitingBytes);
        });
    temporaryURL_ = temporaryURL; // from here on, a failure removes it
    writer->setTags({.start = platform_.clock.wallTime(), .title = options.title});
    room->checkBeforeStart();
    RecordingTrack* const systemAudioInput =
        options.captureSystemAudio ? makeWriterInput(*writer, systemAudioTrack) : nullptr;
    RecordingTrack* const microphoneInput =
        options.captureMicrophone ? makeWriterInput(*writer, microphoneTrack) : nullptr;

    outputDirectory_ = options.outputDirectory;
    trackNames_ = options.trackNames;
    hasSystemAudioTrack_ = options.captureSystemAudio;
    captureQueue_.sync([&] {
        samplePath_.arm(std::move(writer), systemAudioInput, microphoneInput);
        forwardExpectedVolumes();
    });
}

void AudioRecorder::expectVolumes(float systemVolume, float microphoneVolume) {
    captureQueue_.async([this, systemVolume, microphoneVolume] {
        expectedVolumes_ = {systemVolume, microphoneVolume};
        forwardExpectedVolumes();
    });
}

/// On the capture queue.
void AudioRecorder::forwardExpectedVolumes() {
    if (expectedVolumes_) {
        samplePath_.expectMix(expectedVolumes_->first, expectedVolumes_->second);
    }
}

void AudioRecorder::mark(std::string text) {
    captureQueue_.async([this, now = platform_.clock.systemUptime(), text = std::move(text)] {
        samplePath_.mark(now, text);
    });
}

void AudioRecorder::startStream(const RecordingOptions& options) {
    const CaptureRequest request{
        .systemAudio = options.captureSystemAudio,
        .microphone = options.captureMicrophone,
        .microphoneID = options.captureMicrophone ? options.microphoneDeviceID : std::nullopt};
    auto stream = platform_.captureService.makeStream(request, captureQueue_, *this);
    captureQueue_.sync([&] { stream_ = stream; });
    stream->startCapture();
}

std::filesystem::path AudioRecorder::stop(float systemVolume, float microphoneVolume) {
    hasKeptRecording_ = false;
    stopStream();
    try {
        finishWriting();
    } catch (...) {
        reportLoss();
        resetAfterFailedStop();
        throw;
    }
    const bool isAllWritten = !reportLoss();
    if (onRecordingSafe) {
        onRecordingSafe();
    }
    try {
        auto destination = exportFinal(
            recordingVolumes(hasSystemAudioTrack_, systemVolume, microphoneVolume), isAllWritten);
        reset(false);
        return destination;
    } catch (...) {
        resetAfterFailedStop();
        throw;
    }
}

/// Deletes the temporary file once the final file holds all captured sound, else sets it aside.
std::filesystem::path AudioRecorder::exportFinal(const TrackVolume& volumeOfTrack,
                                                 bool isAllWritten) {
    if (outputDirectory_.empty()) {
        throw RecordingError(RecordingError::Case::exportFailed);
    }
    RecordingWriter& writer = *captureQueue_.sync([this] { return samplePath_.writer(); });
    auto place =
        uniqueOutputURL(temporaryURL_.parent_path(), platform_.fileSystem, platform_.clock);
    const auto recording = writer.openRecording();
    const ProgressPace progress(onExportProgress, platform_.clock);
    const auto final = mixTracks(*recording, std::move(place), volumeOfTrack, progress, {});
    const auto tracksFailure = failureToKeepTracks(*recording, platform_.fileSystem, final.location,
                                                   trackNames_, progress);
    auto original = temporaryURL_;
    try {
        if (isAllWritten && !tracksFailure && recording->isWhole()) {
            platform_.fileSystem.remove(temporaryURL_);
        } else {
            original = setAside(platform_.fileSystem, temporaryURL_, final.location);
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The file stays for salvage: better twice than never.
    }
    if (tracksFailure && onTracksNotKept) {
        onTracksNotKept({.original = original, .reason = tracksFailure});
    }
    return final.location;
}

SalvageResult
AudioRecorder::recoverIncompleteRecordings(const std::filesystem::path& folder,
                                           const std::optional<TrackNames>& trackNames,
                                           const std::stop_token& stop) {
    return vantoro::recoverIncompleteRecordings(
        {platform_.mediaToolkit, platform_.fileSystem, platform_.clock}, folder, trackNames, stop,
        onSalvageProgress);
}

void AudioRecorder::stopStream() {
    auto stream = captureQueue_.sync([this] { return stream_; });
    if (!stream) {
        return;
    }
    try {
        stream->stopCapture();
    } catch (...) {
        // Save what was captured anyway.
        const auto error = std::current_exception(); // taken on this thread
        captureQueue_.sync([&] { samplePath_.recordErrorIfNone(error); });
    }
    captureQueue_.sync([this] { stream_.reset(); });
}

void AudioRecorder::finishWriting() {
    // Shared: the completion may still be returning when the result is read.
    const auto done = std::make_shared<std::promise<void>>();
    captureQueue_.async([this, done] {
        samplePath_.finish([done](std::exception_ptr error) {
            if (error) {
                done->set_exception(std::move(error));
            } else {
                done->set_value();
            }
        });
    });
    done->get_future().get();
}

/// Returns whether any sound was lost.
bool AudioRecorder::reportLoss() {
    const auto loss = captureQueue_.sync([this] { return samplePath_.loss(); });
    if (loss && onSoundLoss) {
        onSoundLoss(*loss);
    }
    return loss.has_value();
}

void AudioRecorder::resetAfterFailedStop() {
    hasKeptRecording_ = hasStartedWriting() && holdsSound(platform_.mediaToolkit, temporaryURL_);
    resetKeepingRecording();
}

void AudioRecorder::resetKeepingRecording() {
    reset(!hasStartedWriting());
}

bool AudioRecorder::hasStartedWriting() {
    return captureQueue_.sync([this] { return samplePath_.hasStartedWriting(); });
}

void AudioRecorder::reset(bool removeTemporaryFile) {
    if (removeTemporaryFile && !temporaryURL_.empty()) {
        try {
            platform_.fileSystem.remove(temporaryURL_);
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
            // Usually there is nothing to remove.
        }
    }
    temporaryURL_.clear();
    outputDirectory_.clear();
    trackNames_.reset();
    hasSystemAudioTrack_ = false;
    std::shared_ptr<CaptureStream> stream;
    std::unique_ptr<RecordingWriter> writer;
    captureQueue_.sync([&] {
        stream = std::move(stream_);
        writer = samplePath_.disarm();
    });
    // Both are destroyed on this thread, which may block.
}

void AudioRecorder::didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) {
    samplePath_.append(buffer, source);
}

void AudioRecorder::didLoseSound(AudioLevelSource source, double seconds) {
    if (onSoundLoss) {
        onSoundLoss({.cause = SoundLoss::Cause::notTakenInTime,
                     .length = SoundLoss::Duration(seconds),
                     .source = source,
                     .reason = {}});
    }
}

void AudioRecorder::streamDidStop(std::exception_ptr error) {
    captureQueue_.async([this, error = std::move(error)] {
        stream_.reset();
        samplePath_.interrupt(error);
    });
}

void AudioRecorder::obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) {
    captureQueue_.async([this, source, obstacle] { samplePath_.setObstacle(source, obstacle); });
}

} // namespace vantoro
