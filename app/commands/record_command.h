// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include "app/commands/command_line.h"
#include "app/commands/terminal.h"
#include "app/ending/ending.h"
#include "control/recording_view_model.h"
#include "l10n/l10n.h"

namespace vantoro {

/// Makes one recording: until its time has passed, a signal came, the machine went to sleep,
/// capture broke or the disk got full. Prints the final file's path on standard output and all else
/// on standard error. Main thread, where the application's event loop is not yet running.
class RecordRun final : public QObject {
public:
    /// All of it outlives the run.
    RecordRun(const RecordCommand& command, Ending& ending, const Preferences& preferences);

    /// Returns the exit status: 0 when a file was saved, else 1. The ending knows it by then.
    int run(RecordingViewModel& model);

private:
    using Clock = std::chrono::steady_clock;

    int runUntilItIsOver();
    void followForTheEnd();
    void stateChanged();
    void showMessage(const RecordingProperties::Values& values);
    void recordingBegan();
    void waitForTheEnd();
    void stopWanted();
    void recordingFailed();
    void showLine();
    void showSaving();
    int printResult();

    const RecordCommand& command_;
    Ending& ending_;
    L10n texts_;
    Terminal terminal_;
    RecordingViewModel* model_ = nullptr; // while it runs
    RecordingState::Case state_ = RecordingState::Case::idle;
    bool hasBegun_ = false; // capture ran: a failure leaves something to salvage
    std::optional<Clock::time_point> end_;
    QTimer endTimer_;
    QTimer lineTimer_;
};

} // namespace vantoro
