// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace vantoro {

/// How far the recording is that the window shows.
class RecordingState {
public:
    enum class Case : std::uint8_t {
        idle,       ///< nothing was recorded in this run
        preparing,  ///< a start was requested; the recorder is setting up
        recording,  ///< capture is running
        processing, ///< a stop was requested; the recorder is finishing, mixing and exporting
        completed,  ///< the last recording, or a salvaged one, was saved
        failed,     ///< the last start or stop failed
    };

    /// Any case but `failed`, which has a text: see the factory below.
    explicit RecordingState(Case which = Case::idle) : which_(which) {}

    /// `description`: of the error, without anything appended.
    static RecordingState failed(std::string description) {
        RecordingState state(Case::failed);
        state.description_ = std::move(description);
        return state;
    }

    Case which() const noexcept { return which_; }

    /// Of the error; empty for every case but `failed`.
    const std::string& description() const noexcept { return description_; }

    friend bool operator==(const RecordingState&, const RecordingState&) = default;

private:
    Case which_;
    std::string description_;
};

/// Why a recording ends.
enum class StopReason : std::uint8_t { user, systemSleep, captureInterruption, diskNearlyFull };

} // namespace vantoro
