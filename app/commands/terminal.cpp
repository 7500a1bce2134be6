// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/terminal.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include <unistd.h>

#include "control/elapsed_time.h"

namespace vantoro {

namespace {

constexpr const char* eraseLine = "\r\x1b[K";

std::string meter(const std::string& name, double level, const std::string& condition) {
    constexpr int width = 20;
    const int filled = std::clamp(static_cast<int>(std::lround(level * width)), 0, width);
    return "  " + name + " [" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(width - filled), '-') + "]" +
           (condition.empty() ? condition : " " + condition + "!");
}

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

std::string recordingLine(const RecordingProperties::Values& values, const L10n& texts) {
    auto line = formattedElapsedTime(values.elapsedSeconds);
    if (values.captureSystemAudio) {
        line += meter(texts.text(L10n::Key::systemMeter), values.systemAudioLevel,
                      texts.conditionInShort(values.systemAudioCondition));
    }
    if (values.captureMicrophone) {
        line += meter(texts.text(L10n::Key::microphoneMeter), values.microphoneLevel,
                      texts.conditionInShort(values.microphoneCondition));
    }
    return line;
}

std::string savingLine(const WorkProgress& progress, const L10n& texts) {
    const auto text = progressText(progress, texts);
    return progress.work == WorkProgress::Work::saving ? texts.text(L10n::Key::saving) + " " + text
                                                       : text;
}

} // namespace vantoro
