// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/sample_path.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/recording_types.h"

namespace vantoro {

namespace {

std::exception_ptr causeOf(const RecordingWriter* writer, FailureCode unknown) {
    const auto known = writer != nullptr ? writer->error() : nullptr;
    return known ? known : std::make_exception_ptr(Failure(unknown));
}

} // namespace

SamplePath::SamplePath(const Clock& clock, const AudioLevelCallback& onAudioLevel,
                       const SourceConditionCallback& onSourceCondition,
                       const CaptureInterruptedCallback& onCaptureInterrupted)
    : onAudioLevel_(onAudioLevel),
      onSourceCondition_(onSourceCondition),
      onCaptureInterrupted_(onCaptureInterrupted),
      levelMeter_(clock) {}

void SamplePath::arm(std::unique_ptr<RecordingWriter> writer, RecordingTrack* systemAudioInput,
                     RecordingTrack* microphoneInput) {
    disarm();
    writer_ = std::move(writer);
    systemAudioInput_ = systemAudioInput;
    microphoneInput_ = microphoneInput;
}

std::unique_ptr<RecordingWriter> SamplePath::disarm() {
    systemAudioInput_ = nullptr;
    microphoneInput_ = nullptr;
    writerStarted_ = false;
    sessionStartTime_ = {};
    captureError_ = nullptr;
    secondsDropped_ = {};
    writerFailure_ = nullptr;
    levelMeter_.reset();
    sourceWatch_.reset();
    return std::move(writer_);
}

void SamplePath::append(const SampleBuffer& buffer, AudioLevelSource source) {
    RecordingTrack* const input = inputOf(source);
    if (!buffer.dataIsReady || buffer.frameCount < 1 || input == nullptr) {
        return;
    }
    if (captureError_) {
        if (writer_->status() == WriterStatus::failed) {
            drop(buffer, source);
        }
        return;
    }
    levelMeter_.publishAudioLevel(buffer, source, onAudioLevel_);
    sourceWatch_.observe(buffer, source, onSourceCondition_);
    const MediaTime time = buffer.presentationTime;
    if (!time.isValid() || (!writerStarted_ && !startWriting(time)) || time < sessionStartTime_) {
        return; // the last: the other source's, captured before the start
    }
    if (!input->isReady()) {
        drop(buffer, source);
    } else if (!input->append(buffer)) {
        drop(buffer, source);
        reportWriterFailure(FailureCode::sampleNotWritten);
    }
}

/// Counts the sound that the file cannot take.
void SamplePath::drop(const SampleBuffer& buffer, AudioLevelSource source) {
    if (writerStarted_ && buffer.format) {
        secondsDropped_.at(static_cast<std::size_t>(source)) +=
            static_cast<double>(buffer.frameCount) / buffer.format->sampleRate;
    }
}

std::optional<SoundLoss> SamplePath::loss() const {
    const double seconds =
        std::ranges::max(secondsDropped_) + (writer_ ? writer_->secondsNotWritten() : 0);
    if (seconds <= 0) {
        return std::nullopt;
    }
    const auto reason = writer_->error();
    return SoundLoss{.cause = SoundLoss::Cause::notWritten,
                     .length = SoundLoss::Duration(seconds),
                     .source = std::nullopt,
                     .reason = reason ? reason : writerFailure_};
}

bool SamplePath::startWriting(MediaTime sourceTime) {
    if (!writer_ || !writer_->start(sourceTime)) {
        reportWriterFailure(FailureCode::writerNotStarted);
        return false;
    }
    writerStarted_ = true;
    sessionStartTime_ = sourceTime;
    return true;
}

/// `unknown`: what is told where the writer does not know why.
void SamplePath::reportWriterFailure(FailureCode unknown) {
    writerFailure_ = causeOf(writer_.get(), unknown);
    interrupt(std::make_exception_ptr(RecordingError::writerFailed(writerFailure_)));
}

void SamplePath::setObstacle(AudioLevelSource source, SourceCondition obstacle) {
    sourceWatch_.setObstacle(source, obstacle, onSourceCondition_);
}

void SamplePath::interrupt(std::exception_ptr error) {
    captureError_ = error;
    if (onCaptureInterrupted_) {
        onCaptureInterrupted_(std::move(error));
    }
}

void SamplePath::recordErrorIfNone(std::exception_ptr error) {
    if (!captureError_) {
        captureError_ = std::move(error);
    }
}

void SamplePath::finish(std::function<void(std::exception_ptr)> completion) {
    if (!writer_ || !writerStarted_) {
        completion(std::make_exception_ptr(RecordingError(RecordingError::Case::noAudioCaptured)));
        return;
    }
    for (RecordingTrack* const input : {systemAudioInput_, microphoneInput_}) {
        if (input != nullptr) {
            input->end();
        }
    }
    writer_->finish([&writer = *writer_, completion = std::move(completion)] {
        completion(writer.status() == WriterStatus::completed
                       ? nullptr
                       : std::make_exception_ptr(RecordingError::writerFailed(
                             causeOf(&writer, FailureCode::recordingNotFinished))));
    });
}

void SamplePath::mark(double uptime, const std::string& text) {
    constexpr std::int32_t microseconds = 1'000'000;
    if (writer_) {
        writer_->addMark({std::llround(uptime * microseconds), microseconds}, text);
    }
}

void SamplePath::expectMix(float systemVolume, float microphoneVolume) {
    std::vector<float> volumes;
    if (systemAudioInput_ != nullptr) {
        volumes.push_back(systemVolume);
    }
    if (microphoneInput_ != nullptr) {
        volumes.push_back(microphoneVolume);
    }
    if (writer_) {
        writer_->expectMix(std::move(volumes));
    }
}

RecordingTrack* SamplePath::inputOf(AudioLevelSource source) const noexcept {
    return source == AudioLevelSource::systemAudio ? systemAudioInput_ : microphoneInput_;
}

} // namespace vantoro
