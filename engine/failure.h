// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vantoro {

// Where its caller is expected to act on a failure, a function returns std::expected (std::optional
// if there is nothing to tell); where what was asked for could not be done, it throws. A failure
// that crosses threads, or is kept, is a std::exception_ptr. An exception says what failed; l10n
// puts it into words where the user reads it. `what()` is English, for developers and logs.

/// What failed, apart from files (`FileFailure`) and what the recorder itself refuses
/// (`RecordingError`).
enum class FailureCode : std::uint8_t {
    // Capture
    soundSystemNotInitialized,
    serverUnreachable,
    serverSilent,
    connectionLost,
    noDefaultMicrophone,
    microphoneUnknown, ///< argument: the microphone's identifier
    microphoneSilent,  ///< it delivered nothing from the start on
    microphoneStalled, ///< it delivers nothing any more
    microphoneDisconnected,
    captureNotStarted, ///< in time
    streamNotMade,
    streamNotConnected,
    streamEnded,
    streamEndedBecause, ///< argument: the sound server's words
    // The recording's file
    writerNotStarted,
    sampleNotWritten,
    recordingNotFinished,
    noSoundWritten,
    recordingDamaged, ///< argument: where, for developers
    // Encoding and decoding
    encoderMissing,
    decoderMissing,
    codecFailed, ///< argument: what the library says, for developers
    // Parts of the program that it loads late
    partNotLoaded, ///< argument: the loader's words
    programUpdated,
};

class Failure : public std::runtime_error {
public:
    explicit Failure(FailureCode code, std::string argument = {});

    FailureCode code() const noexcept { return code_; }

    const std::string& argument() const noexcept { return argument_; }

private:
    FailureCode code_;
    std::string argument_;
};

/// What could not be done with a file or a folder.
enum class FileAction : std::uint8_t {
    createFolder,
    create,
    createIn, ///< a file without a name, in the folder
    open,
    find,
    examine,
    lock,
    read,
    write,
    remove,
    list,
    countFreeSpace,
};

/// The system refused something with a file or a folder. `code()` says why, in the system category.
class FileFailure : public std::system_error {
public:
    FileFailure(FileAction action, const std::filesystem::path& path, int errorNumber);

    FileAction action() const noexcept { return action_; }

    /// The last part of the path.
    const std::string& name() const noexcept { return name_; }

private:
    FileAction action_;
    std::string name_;
};

/// `what()` of the exception; empty for none.
std::string whatOf(const std::exception_ptr& failure);

} // namespace vantoro
