// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/record_command.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include <QtCore/QCoreApplication>

#include "control/transitions.h"
#include "l10n/texts/command_texts.h"
#include "l10n/texts/error_description.h"

namespace vantoro {

namespace {

using namespace std::chrono_literals;
using Case = RecordingState::Case;

constexpr auto lineInterval = 100ms;
constexpr auto longestWait = 24h; // a single QTimer cannot wait much longer
constexpr double foreverSeconds = 1e9;

} // namespace

RecordRun::RecordRun(const RecordCommand& command, Ending& ending, const Preferences& preferences)
    : command_(command), ending_(ending), texts_(preferences) {
    endTimer_.setSingleShot(true);
    endTimer_.setTimerType(Qt::PreciseTimer);
    connect(&endTimer_, &QTimer::timeout, this, &RecordRun::scheduleStop);
    silenceTimer_.setSingleShot(true);
    connect(&silenceTimer_, &QTimer::timeout, this, &RecordRun::stopRequested);
    connect(&markNotifier_, &QSocketNotifier::activated, this, &RecordRun::markRequested);
    connect(&lineTimer_, &QTimer::timeout, this, &RecordRun::showLine);
}

int RecordRun::run(RecordingViewModel& model) {
    model.setCaptureSystemAudio(command_.systemAudio);
    model.setCaptureMicrophone(command_.microphone);
    model.setSystemVolume(command_.systemVolume);
    model.setMicrophoneVolume(command_.microphoneVolume);
    model.setTitle(command_.title);
    if (!model.canStart()) {
        terminal_.message(errorDescription(RecordingError(RecordingError::Case::noAudioSource),
                                           texts_.language()));
        return 1;
    }
    if (command_.microphoneID) {
        model.setSelectedMicrophoneID(command_.microphoneID);
    }
    model_ = &model;
    // Queued, so that the handler sees the model after the change is complete.
    connect(model_, &RecordingProperties::stateChanged, this, &RecordRun::stateChanged,
            Qt::QueuedConnection);
    connect(model_, &RecordingProperties::stateChanged, this, &RecordRun::reportProgress);
    connect(model_, &RecordingProperties::propertyChanged, this, [this](auto property) {
        using enum RecordingProperties::Property;
        if (property == errorMessage) {
            showMessage(model_->values());
        } else if (property == progress) {
            showSaving();
        } else if (property == systemAudioLevel) {
            levelChanged(model_->values().systemAudioLevel);
        } else if (property == microphoneLevel) {
            levelChanged(model_->values().microphoneLevel);
        }
    });
    reportProgress();
    const Ending::Handler handler(ending_, [this] {
        QMetaObject::invokeMethod(this, &RecordRun::stopRequested, Qt::QueuedConnection);
    });
    model_->startRecording();
    const int status = QCoreApplication::exec();
    ending_.concluded(status);
    return status;
}

void RecordRun::reportProgress() {
    ending_.progressed({.state = model_->values().state.which(),
                        .folder = model_->values().outputDirectory,
                        .language = texts_.language()});
}

void RecordRun::stateChanged() {
    const auto now = model_->values().state.which();
    if (now == std::exchange(state_, now)) {
        return; // it has changed again since
    }
    switch (now) {
    case Case::recording:
        recordingBegan();
        break;
    case Case::processing:
        hasBegun_ = true;
        lineTimer_.stop();
        terminal_.clearLine();
        break;
    case Case::completed:
        QCoreApplication::exit(printResult());
        break;
    case Case::failed:
        recordingFailed();
        break;
    default:
        break;
    }
}

void RecordRun::levelChanged(double level) {
    if (command_.silence && level > 0) {
        const auto silence =
            std::chrono::duration<double>(std::min(*command_.silence, foreverSeconds));
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(silence);
        silenceTimer_.start(std::min<std::chrono::milliseconds>(wait, longestWait));
    }
}

/// Only while recording. At the end, messages are printed with the result.
void RecordRun::showMessage(const RecordingProperties::Values& values) {
    if (values.errorMessage && isUnderWay(values.state.which())) {
        terminal_.message(*values.errorMessage);
    }
}

void RecordRun::recordingBegan() {
    hasBegun_ = true;
    if (command_.seconds && *command_.seconds <= foreverSeconds) {
        end_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                  std::chrono::duration<double>(*command_.seconds));
        scheduleStop();
    }
    if (terminal_.isLive()) {
        showLine();
        lineTimer_.start(lineInterval);
    }
}

void RecordRun::scheduleStop() {
    if (!end_) {
        return;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end_ - Clock::now());
    if (left.count() <= 0) {
        stopRequested();
    } else {
        endTimer_.start(std::min<std::chrono::milliseconds>(left, longestWait));
    }
}

void RecordRun::markRequested() {
    for (int signals = markSignal_.take(); signals > 0; --signals) {
        if (const int number = model_->mark({}); number > 0) {
            terminal_.message(CommandText::marked.in(
                texts_.language(), {std::to_string(number), model_->formattedElapsedTime()}));
        }
    }
}

void RecordRun::stopRequested() {
    if (state_ == Case::failed) {
        QCoreApplication::exit(1); // what is still being salvaged stays for the next time
    } else {
        markRequested(); // what was marked before the stop counts
        model_->stopRecording();
    }
}

void RecordRun::recordingFailed() {
    terminal_.message(model_->values().errorMessage.value_or(std::string()));
    if (!hasBegun_) {
        QCoreApplication::exit(1);
        return;
    }
    // A salvage of the failed recording may still produce a file.
    connect(model_, &RecordingViewModel::salvageEnded, this, [this] {
        if (model_->values().state.which() == Case::failed) {
            QCoreApplication::exit(1);
        }
    });
}

void RecordRun::showLine() {
    if (model_->values().state.which() == Case::recording) {
        terminal_.showLine(recordingLine(model_->values(), texts_));
    }
}

void RecordRun::showSaving() {
    const auto& progress = model_->values().progress;
    if (progress &&
        (state_ == Case::processing || state_ == Case::failed)) { // not an earlier one's
        terminal_.showLine(savingLine(*progress, texts_));
    }
}

int RecordRun::printResult() {
    const auto& values = model_->values();
    terminal_.clearLine();
    if (values.errorMessage) {
        terminal_.message(*values.errorMessage);
    }
    const auto place = values.lastRecordingURL.value_or(std::filesystem::path()).string();
    std::cout << place << std::endl; // NOLINT(performance-avoid-endl): checked below
    if (!std::cout) {
        terminal_.message(CommandText::recordingNotPrinted.in(texts_.language(), {place}));
        return 1;
    }
    return model_->isIncomplete() ? 1 : 0;
}

} // namespace vantoro
