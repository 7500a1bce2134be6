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

/// What tells the sources' own files apart: what follows the final file's name, in brackets.
struct TrackNames {
    std::string systemAudio;
    std::string microphone;

    friend bool operator==(const TrackNames&, const TrackNames&) = default;
};

/// What to record and where; copied into the recorder at each start.
struct RecordingOptions {
    bool captureSystemAudio; ///< what the computer plays, except this program
    bool captureMicrophone;
    /// Default microphone if absent. Used only with `captureMicrophone`.
    std::optional<std::string> microphoneDeviceID;
    /// Folder of the temporary and the final file; created with its parents on start.
    std::filesystem::path outputDirectory;
    /// Of the final file; empty: its name without the extension.
    std::string title = {};
    /// If present, each source is also kept in a file of its own.
    std::optional<TrackNames> trackNames = {};

    friend bool operator==(const RecordingOptions&, const RecordingOptions&) = default;
};

/// The recorder's own failures. l10n composes their texts for the user.
class RecordingError : public std::exception {
public:
    enum class Case : std::uint8_t {
        writerFailed,
        noAudioSource,
        screenPermissionDenied,
        microphonePermissionDenied,
        noDisplayAvailable, ///< unused: capture needs no display
        writerSetupFailed,
        noAudioCaptured,
        exportFailed,
        diskTooFull,
    };

    /// Any case except `writerFailed`, which needs a message: see the factories below.
    explicit RecordingError(Case which);
    static RecordingError writerFailed(std::string message);
    /// With the cause's `what()` as its message.
    static RecordingError writerFailed(std::exception_ptr cause);

    Case which() const noexcept { return which_; }

    /// The detail of `writerFailed`; empty otherwise.
    const std::string& message() const noexcept { return message_; }

    /// What a `writerFailed` was made from; otherwise null.
    const std::exception_ptr& cause() const noexcept { return cause_; }

    /// For developers: the case's name, and the detail if any.
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

/// A source of sound.
enum class AudioLevelSource : std::uint8_t { systemAudio, microphone };

/// Whether a source delivers sound.
enum class SourceCondition : std::uint8_t {
    delivering,
    silent, ///< only zeros for `SourceWatch::silenceLimit`, rare even in a quiet room
    muted,  ///< in the desktop's mixer
    coded,  ///< some of it is sent encoded to a receiver and cannot be recorded
};

/// Sound missing from the recording, although the source delivered it.
struct SoundLoss {
    using Duration = std::chrono::duration<double>;

    enum class Cause : std::uint8_t {
        notTakenInTime, ///< the program stalled for too long; replaced by silence
        notWritten,
    };

    Cause cause;
    Duration length;
    /// The affected source, or all if absent. Simultaneous losses are reported per source.
    std::optional<AudioLevelSource> source;
    std::exception_ptr reason; ///< for `notWritten`; null if the disk was too slow

    friend bool operator==(const SoundLoss&, const SoundLoss&) = default;
};

/// The recording was saved, but not the sources' own files.
struct TracksNotKept {
    std::filesystem::path original; ///< the temporary file, which has all of them
    std::exception_ptr reason;

    friend bool operator==(const TracksNotKept&, const TracksNotKept&) = default;
};

using TracksNotKeptCallback = std::function<void(const TracksNotKept&)>;

using SoundLossCallback = std::function<void(const SoundLoss&)>;

/// A microphone for display in a list.
struct AudioInputDevice {
    std::string id;   ///< for `RecordingOptions::microphoneDeviceID`
    std::string name; ///< for display

    friend bool operator==(const AudioInputDevice&, const AudioInputDevice&) = default;
};

} // namespace vantoro

template <>
struct std::hash<vantoro::AudioInputDevice> {
    std::size_t operator()(const vantoro::AudioInputDevice& device) const noexcept;
};
