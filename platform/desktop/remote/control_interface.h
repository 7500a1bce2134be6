// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/bus_message.h"

// The interface by which other programs control a recording; docs/control.md describes it.

namespace vantoro::desktop {

inline const BusObject controlObject{.path = "/com/vantoro/app",
                                     .interface = "com.vantoro.Control1"};

/// Names on the bus of the programs that only record, without a window, begin with this.
constexpr const char* recordingServices = "com.vantoro.app.recording.";

/// The value of the interface's property `Version`; greater with each addition.
constexpr std::uint32_t controlVersion = 2; // 2: Mark

// The errors of its methods.
constexpr const char* notRecordingError =
    "com.vantoro.Error.NotRecording";                               ///< nothing to stop or mark
constexpr const char* savingError = "com.vantoro.Error.Saving";     ///< cannot start now
constexpr const char* noSourceError = "com.vantoro.Error.NoSource"; ///< both sources are off
constexpr const char* failedError = "com.vantoro.Error.Failed";     ///< with a text for the user
constexpr const char* fullError = "com.vantoro.Error.Full";         ///< no more marks can be kept

/// One of the two sources of a recording.
struct ControlSource {
    bool isOn = true;
    double level = 0; ///< 0 to 1, linear in decibels
    std::string condition = "delivering";

    friend bool operator==(const ControlSource&, const ControlSource&) = default;
};

/// The interface's properties. UTF-8.
struct ControlStatus {
    std::string state = "idle";
    std::int64_t startedAt = 0; ///< microseconds of the monotonic clock; 0 before the first start
    std::int64_t elapsedSeconds = 0;
    double savingProgress = 0; ///< 0 to 1
    ControlSource systemAudio = {};
    ControlSource microphone = {};
    // NOLINTBEGIN(readability-redundant-member-init): callers may leave these out
    std::string microphoneID = {};
    std::string folder = {};        ///< URI; of the current recording, else of the next
    std::string lastRecording = {}; ///< URI; empty for none
    std::string message = {};       ///< for the user; may be empty
    // NOLINTEND(readability-redundant-member-init)

    friend bool operator==(const ControlStatus&, const ControlStatus&) = default;
};

/// `BusProperties` holds all properties of the interface, also the constant ones.
BusProperties propertiesOf(const ControlStatus& status);
/// What is missing or has another type keeps its initial value.
ControlStatus statusOf(const BusProperties& properties);

/// A saved recording, as the method `Stop` returns it.
struct SavedRecording {
    std::string uri;
    bool isComplete = true; ///< false if sound that was captured is missing
    std::string message;    ///< for the user; may be empty

    friend bool operator==(const SavedRecording&, const SavedRecording&) = default;
};

/// Why a method failed.
struct ControlFailure {
    std::string error; ///< one of the names above, or another's
    std::string text;

    friend bool operator==(const ControlFailure&, const ControlFailure&) = default;
};

} // namespace vantoro::desktop
