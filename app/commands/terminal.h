// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace vantoro {

/// Standard error: one line that is written over and over while it is a terminal, and messages.
/// One thread at a time.
class Terminal {
public:
    Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    ~Terminal() { clearLine(); }

    /// Whether a progress line is seen by anybody.
    bool isLive() const noexcept { return isLive_; }

    /// Does nothing unless live, nor when the line stands there already.
    void showLine(const std::string& line);
    void clearLine();
    /// A whole line of its own, above the live one.
    void message(const std::string& text);

private:
    bool isLive_;
    std::string shown_;
};

} // namespace vantoro
