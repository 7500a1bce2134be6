// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace vantoro {

/// The stage that the current recording has reached.
class RecordingState {
public:
    enum class Case : std::uint8_t {
        idle,       ///< nothing recorded in this run
        preparing,  ///< starting: the recorder is setting up
        recording,  ///< capture is running
        processing, ///< stopping: the recorder is finishing, mixing and exporting
        completed,  ///< a recording was saved, or salvaged
        failed,     ///< the last start or stop failed
    };

    /// Implicit for any case but `failed`, which has the factory below.
    RecordingState(Case which = Case::idle) : which_(which) {}

    static RecordingState failed(std::string description) {
        RecordingState state(Case::failed);
        state.description_ = std::move(description);
        return state;
    }

    Case which() const noexcept { return which_; }

    /// The error's text; empty for every case but `failed`.
    const std::string& description() const noexcept { return description_; }

    friend bool operator==(const RecordingState&, const RecordingState&) = default;

private:
    Case which_;
    std::string description_;
};

/// Why a recording ends.
enum class StopReason : std::uint8_t { user, systemSleep, captureInterruption, diskNearlyFull };

} // namespace vantoro
