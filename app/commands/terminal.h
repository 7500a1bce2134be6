// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "control/recording_properties.h"
#include "l10n/l10n.h"

namespace vantoro {

/// Standard error: messages and, on a terminal, a progress line that is rewritten in place. One
/// thread at a time.
class Terminal {
public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    ~Terminal() { clearLine(); }

    /// Whether standard error is a terminal.
    bool isLive() const noexcept { return isLive_; }

    /// Does nothing unless live.
    void showLine(const std::string& line);
    void clearLine();
    /// Prints a separate line above the progress line.
    void message(const std::string& text);

private:
    bool isLive_;
    std::string shown_;
};

/// The progress line while recording: the time, and the levels of the enabled sources.
std::string recordingLine(const RecordingProperties::Values& values, const L10n& texts);

/// The progress line while final files are written.
std::string savingLine(const WorkProgress& progress, const L10n& texts);

} // namespace vantoro
