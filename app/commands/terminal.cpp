// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/terminal.h"

#include <iostream>

#include <unistd.h>

namespace vantoro {

namespace {

constexpr const char* eraseLine = "\r\x1b[K";

} // namespace

Terminal::Terminal() : isLive_(::isatty(STDERR_FILENO) == 1) {}

void Terminal::showLine(const std::string& line) {
    if (isLive_ && line != shown_) {
        std::cerr << eraseLine << line << std::flush;
        shown_ = line;
    }
}

void Terminal::clearLine() {
    if (!shown_.empty()) {
        std::cerr << eraseLine << std::flush;
        shown_.clear();
    }
}

void Terminal::message(const std::string& text) {
    clearLine();
    std::cerr << text << std::endl; // NOLINT(performance-avoid-endl): flush at once
}

} // namespace vantoro
