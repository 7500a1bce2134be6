#include "app/record_command.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <exception>
#include <iostream>
#include <mutex>

#include "app/live_line.h"
#include "app/terminal.h"
#include "l10n/error_description.h"

namespace vantoro {

namespace {

using TimePoint = StopSignals::Clock::time_point;
using Seconds = std::chrono::duration<double>;

constexpr auto lineInterval = std::chrono::milliseconds(100);
constexpr double foreverSeconds = 1e9;          // a clock cannot count much further
constexpr auto language = AppLanguage::english; // of all that the commands say

/// One run of the command; owns what the recorder's callbacks write.
class RecordRun {
public:
    RecordRun(const RecordCommand& command, AudioRecorder& recorder, StopSignals& signals)
        : command_(command), recorder_(recorder), signals_(signals) {
        recorder_.onAudioLevel = [this](AudioLevelSource source, float level) {
            levels_.at(static_cast<std::size_t>(source)) = level;
        };
        recorder_.onCaptureInterrupted = [this](std::exception_ptr error) {
            const std::lock_guard lock(mutex_);
            if (!interruption_) {
                interruption_ = std::move(error);
            }
            signals_.wake();
        };
        recorder_.onExportProgress = [this](double fraction) {
            terminal_.showLine(savingLine(fraction));
        };
    }

    RecordRun(const RecordRun&) = delete;
    RecordRun& operator=(const RecordRun&) = delete;

    ~RecordRun() {
        recorder_.onAudioLevel = nullptr;
        recorder_.onCaptureInterrupted = nullptr;
        recorder_.onExportProgress = nullptr;
    }

    int run(const std::filesystem::path& folder) {
        try {
            recorder_.start({.captureSystemAudio = command_.systemAudio,
                             .captureMicrophone = command_.microphone,
                             .microphoneDeviceID = command_.microphoneID,
                             .outputDirectory = folder});
        } catch (...) {
            terminal_.message(errorDescription(std::current_exception(), language));
            return 1;
        }
        waitForTheEnd(StopSignals::Clock::now());
        return save();
    }

private:
    void waitForTheEnd(TimePoint begin) {
        const auto end = endOf(begin);
        for (;;) {
            auto deadline = end;
            if (terminal_.isLive()) {
                showLine(begin);
                const auto next = StopSignals::Clock::now() + lineInterval;
                deadline = end ? std::min(*end, next) : next;
            }
            if (signals_.wait(deadline) != StopSignals::Event::deadline ||
                (end && StopSignals::Clock::now() >= *end)) {
                return;
            }
        }
    }

    std::optional<TimePoint> endOf(TimePoint begin) const {
        if (!command_.seconds || *command_.seconds > foreverSeconds) {
            return std::nullopt;
        }
        return begin + std::chrono::duration_cast<TimePoint::duration>(Seconds(*command_.seconds));
    }

    void showLine(TimePoint begin) {
        const auto elapsed =
            std::chrono::floor<std::chrono::seconds>(StopSignals::Clock::now() - begin);
        terminal_.showLine(recordingLine(
            elapsed.count(), levelOf(AudioLevelSource::systemAudio, command_.systemAudio),
            levelOf(AudioLevelSource::microphone, command_.microphone)));
    }

    std::optional<float> levelOf(AudioLevelSource source, bool isOn) const {
        return isOn ? std::optional(levels_.at(static_cast<std::size_t>(source)).load())
                    : std::nullopt;
    }

    int save() {
        terminal_.showLine(savingLine(0));
        std::filesystem::path saved;
        try {
            saved = recorder_.stop(command_.systemVolume, command_.microphoneVolume);
        } catch (...) {
            terminal_.message(failureText(std::current_exception()));
            return 1;
        }
        terminal_.clearLine();
        if (const auto cause = interruption()) {
            terminal_.message(errorDescription(cause, language));
            terminal_.message("Audio capture was interrupted. The captured audio was saved "
                              "successfully.");
        }
        std::cout << saved.string() << std::endl; // NOLINT(performance-avoid-endl): checked below
        if (!std::cout) {
            terminal_.message("The recording was saved as " + saved.string() +
                              ", which could not be printed.");
            return 1;
        }
        return 0;
    }

    std::string failureText(const std::exception_ptr& error) const {
        if (isNoAudioCaptured(error)) {
            const auto cause = interruption(); // says more than that nothing came of it
            return errorDescription(cause ? cause : error, language);
        }
        return errorDescription(error, language) +
               " A recoverable recording checkpoint was kept in the recording folder.";
    }

    static bool isNoAudioCaptured(const std::exception_ptr& error) {
        try {
            std::rethrow_exception(error);
        } catch (const RecordingError& recordingError) {
            return recordingError.which() == RecordingError::Case::noAudioCaptured;
        } catch (...) {
            return false;
        }
    }

    std::exception_ptr interruption() const {
        const std::lock_guard lock(mutex_);
        return interruption_;
    }

    const RecordCommand& command_;
    AudioRecorder& recorder_;
    StopSignals& signals_;
    Terminal terminal_;
    std::array<std::atomic<float>, 2> levels_{}; // by source; written on the capture queue
    mutable std::mutex mutex_;
    std::exception_ptr interruption_; // the first one; guarded by mutex_
};

} // namespace

int runRecordCommand(const RecordCommand& command, const std::filesystem::path& defaultFolder,
                     AudioRecorder& recorder, StopSignals& signals) {
    RecordRun run(command, recorder, signals);
    return run.run(std::filesystem::absolute(command.folder.value_or(defaultFolder)));
}

} // namespace vantoro
