// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/logged_recorder.h"

#include <array>
#include <cmath>
#include <ctime>
#include <exception>
#include <utility>

#include "engine/failure.h"

namespace vantoro {

namespace {

using Level = RecordingLog::Level;

std::string nameOf(const std::tm& start) {
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &start)};
}

/// Without the names of files and devices.
std::string causeOf(const std::exception_ptr& failure) {
    if (!failure) {
        return {};
    }
    try {
        std::rethrow_exception(failure);
    } catch (const FileFailure& refused) {
        return "A file could not be used: " + refused.code().message() + ".";
    } catch (const Failure& failed) {
        return failed.code() == FailureCode::microphoneUnknown
                   ? Failure(failed.code(), "chosen one").what()
                   : failed.what();
    } catch (const RecordingError& error) {
        return error.cause() ? causeOf(error.cause()) : error.what();
    } catch (const std::exception& other) {
        return other.what();
    }
}

std::string sourcesOf(const RecordingOptions& options) {
    const std::string microphone =
        options.microphoneDeviceID ? "a chosen microphone" : "the default microphone";
    return !options.captureMicrophone    ? "system audio"
           : !options.captureSystemAudio ? microphone
                                         : "system audio and " + microphone;
}

std::string nameOf(AudioLevelSource source) {
    return source == AudioLevelSource::systemAudio ? "System audio" : "The microphone";
}

std::string conditionOf(AudioLevelSource source, SourceCondition condition) {
    using enum SourceCondition;
    return nameOf(source) + (condition == silent  ? " has been silent for ten seconds."
                             : condition == muted ? " is muted."
                             : condition == coded ? " is partly sent encoded to a receiver."
                                                  : " delivers sound.");
}

std::string lossOf(const SoundLoss& loss) {
    const auto tenths = std::lround(loss.length.count() * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s of sound were " +
           (loss.cause == SoundLoss::Cause::notWritten ? "not written" : "not taken in time") +
           (loss.reason ? ": " + causeOf(loss.reason) : ".");
}

std::string tracksNotKept(const TracksNotKept& tracks) {
    return "The sources could not be written to files of their own. " + causeOf(tracks.reason);
}

} // namespace

LoggedRecorder::LoggedRecorder(std::unique_ptr<Recorder> recorder, RecordingLog& log,
                               const Clock& clock)
    : log_(log), clock_(clock), recorder_(std::move(recorder)) {
    followCallbacks();
}

void LoggedRecorder::start(const RecordingOptions& options) {
    recording_ = nameOf(clock_.localTime());
    try {
        recorder_->start(options);
    } catch (...) {
        write(Level::error, "The recording did not begin. " + causeOf(std::current_exception()));
        throw;
    }
    write(Level::information, "The recording began, of " + sourcesOf(options) + ".");
}

std::filesystem::path LoggedRecorder::stop(float systemVolume, float microphoneVolume) {
    try {
        auto saved = recorder_->stop(systemVolume, microphoneVolume);
        write(Level::information, "The recording is saved as " + saved.filename().string() + ".");
        return saved;
    } catch (...) {
        write(Level::error,
              "The recording was not saved. " + causeOf(std::current_exception()) +
                  (recorder_->hasKeptRecording() ? " What was captured is kept." : ""));
        throw;
    }
}

SalvageResult
LoggedRecorder::recoverIncompleteRecordings(const std::filesystem::path& folder,
                                            const std::optional<TrackNames>& trackNames,
                                            const std::stop_token& stop) {
    auto result = recorder_->recoverIncompleteRecordings(folder, trackNames, stop);
    logSalvage(log_, result);
    return result;
}

/// The view model sets this recorder's own callbacks before `start`, each if it wants it.
void LoggedRecorder::followCallbacks() {
    recorder_->onCaptureInterrupted = [this](const std::exception_ptr& cause) {
        write(Level::error, "The recording ends by itself. " + causeOf(cause));
        if (onCaptureInterrupted) {
            onCaptureInterrupted(cause);
        }
    };
    recorder_->onAudioLevel = [this](AudioLevelSource source, float level) {
        if (onAudioLevel) {
            onAudioLevel(source, level);
        }
    };
    recorder_->onSourceCondition = [this](AudioLevelSource source, SourceCondition condition) {
        write(Level::notice, conditionOf(source, condition));
        if (onSourceCondition) {
            onSourceCondition(source, condition);
        }
    };
    recorder_->onSoundLoss = [this](const SoundLoss& loss) {
        write(Level::error, lossOf(loss));
        if (onSoundLoss) {
            onSoundLoss(loss);
        }
    };
    recorder_->onDiskRoom = [this](DiskRoom room) {
        write(Level::warning,
              room.advice == RoomAdvice::end
                  ? "The disk is full; the recording ends."
                  : "The disk has room for " + std::to_string(room.minutesLeft) + " more minutes.");
        if (onDiskRoom) {
            onDiskRoom(room);
        }
    };
    recorder_->onTracksNotKept = [this](const TracksNotKept& tracks) {
        write(Level::error, tracksNotKept(tracks));
        if (onTracksNotKept) {
            onTracksNotKept(tracks);
        }
    };
    recorder_->onRecordingSafe = [this] {
        if (onRecordingSafe) {
            onRecordingSafe();
        }
    };
    recorder_->onExportProgress = [this](double fraction) {
        if (onExportProgress) {
            onExportProgress(fraction);
        }
    };
    recorder_->onSalvageProgress = [this](double fraction) {
        if (onSalvageProgress) {
            onSalvageProgress(fraction);
        }
    };
}

void LoggedRecorder::write(Level level, const std::string& message) {
    log_.write(level, message, recording_);
}

void logSalvage(RecordingLog& log, const SalvageResult& result) {
    for (const auto& file : result.recordings) {
        log.write(Level::notice,
                  "An interrupted recording is saved as " + file.filename().string() + ".", {});
    }
    for (const auto& file : result.keptOriginals) {
        log.write(Level::warning,
                  "It could be read only in part: " + file.filename().string() + " is kept.", {});
    }
    for (const auto& tracks : result.tracksNotKept) {
        log.write(Level::error, tracksNotKept(tracks), {});
    }
    for (const auto& failure : result.failures) {
        log.write(Level::error, "An interrupted recording was not saved. " + causeOf(failure.error),
                  {});
    }
}

} // namespace vantoro
