// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace vantoro {

/// What one recording takes in and where it goes; copied into the recorder at each start.
struct RecordingOptions {
    bool captureSystemAudio; ///< record what the computer plays, this program excepted
    bool captureMicrophone;
    /// Absent: the default microphone. Consulted only when `captureMicrophone` is on.
    std::optional<std::string> microphoneDeviceID;
    /// Holds the temporary and the final file; created, with its parents, when the recording
    /// starts.
    std::filesystem::path outputDirectory;

    friend bool operator==(const RecordingOptions&, const RecordingOptions&) = default;
};

/// The recorder's own failures. Their texts for the user are composed in l10n, each time anew.
class RecordingError : public std::exception {
public:
    enum class Case : std::uint8_t {
        writerFailed,
        noAudioSource,
        screenPermissionDenied,
        microphonePermissionDenied,
        noDisplayAvailable, ///< never here: sound is captured without a display
        writerSetupFailed,
        noAudioCaptured,
        exportFailed,
        diskTooFull,
    };

    /// Any case but `writerFailed`, which has a message: see the factories below.
    explicit RecordingError(Case which);
    static RecordingError writerFailed(std::string message);
    /// With the cause's `what()` as its message.
    static RecordingError writerFailed(std::exception_ptr cause);

    Case which() const noexcept { return which_; }

    /// The detail of `writerFailed`; empty for every other case.
    const std::string& message() const noexcept { return message_; }

    /// Of a `writerFailed` that was made of it; otherwise null.
    const std::exception_ptr& cause() const noexcept { return cause_; }

    /// For developers, not for the user: the case's name, and the detail where there is one.
    const char* what() const noexcept override;

    friend bool operator==(const RecordingError& a, const RecordingError& b) {
        return a.which_ == b.which_ && a.message_ == b.message_;
    }

private:
    RecordingError(Case which, std::string message);

    Case which_;
    std::string message_;
    std::exception_ptr cause_;
    std::string what_;
};

/// The two sources a level can belong to.
enum class AudioLevelSource : std::uint8_t { systemAudio, microphone };

/// Whether a source gives what it is recorded for.
enum class SourceCondition : std::uint8_t {
    delivering,
    silent, ///< nothing but zeros for `SourceWatch::noticed`, which a quiet room hardly gives
    muted,  ///< switched off in the desktop's mixer
    coded,  ///< some of it goes to a receiver in a coded form, which cannot be recorded
};

/// Sound that was captured and is not in the recording.
struct SoundLoss {
    using Duration = std::chrono::duration<double>;

    enum class Cause : std::uint8_t {
        notTakenInTime, ///< the program stood still for too long: silence stands for it
        notWritten,
    };

    Cause cause;
    Duration length;
    /// Whose it was; of two that are lost at a time, each is told. Nothing: of all.
    std::optional<AudioLevelSource> source;
    std::exception_ptr reason; ///< for `notWritten`; null where the disk was too slow

    friend bool operator==(const SoundLoss&, const SoundLoss&) = default;
};

/// Receives each loss once it is known.
using SoundLossCallback = std::function<void(const SoundLoss&)>;

/// One microphone as a list shows it.
struct AudioInputDevice {
    std::string id;   ///< what goes into `RecordingOptions::microphoneDeviceID`
    std::string name; ///< for people

    friend bool operator==(const AudioInputDevice&, const AudioInputDevice&) = default;
};

} // namespace vantoro

template <>
struct std::hash<vantoro::AudioInputDevice> {
    std::size_t operator()(const vantoro::AudioInputDevice& device) const noexcept;
};
