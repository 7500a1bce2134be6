// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include "app/commands/command_line.h"
#include "app/commands/mark_signal.h"
#include "app/commands/terminal.h"
#include "app/ending/ending.h"
#include "control/recording_view_model.h"
#include "l10n/l10n.h"
#include "l10n/preferences.h"

namespace vantoro {

/// Overrides some of the user's preferences for one run. Nothing set here is stored. Main thread.
class PreferencesForOneRun final : public Preferences {
public:
    /// `users` must outlive this.
    explicit PreferencesForOneRun(const Preferences& users) : users_(users) {}

    std::optional<std::string> get(Preference preference) const override {
        const auto found = ofThisRun_.find(preference);
        return found == ofThisRun_.end() ? users_.get(preference) : found->second;
    }

    void set(Preference preference, const std::string& value) override {
        ofThisRun_[preference] = value;
    }

private:
    const Preferences& users_;
    std::map<Preference, std::string> ofThisRun_;
};

/// Makes one recording, until its time is over, silence has lasted long enough, a signal arrives,
/// the machine sleeps, capture fails or the disk is nearly full. SIGUSR1 sets a mark. Prints the
/// final file's path on standard output and everything else on standard error. Main thread, before
/// the event loop runs.
class RecordRun final : public QObject {
public:
    /// All arguments must outlive this.
    RecordRun(const RecordCommand& command, Ending& ending, const Preferences& preferences);

    /// Returns the exit status, after passing it to the `Ending`: 0 if the recording was saved
    /// without loss and its path printed, else 1.
    int run(RecordingViewModel& model);

private:
    using Clock = std::chrono::steady_clock;

    void reportProgress();
    void stateChanged();
    void levelChanged(double level);
    void showMessage(const RecordingProperties::Values& values);
    void recordingBegan();
    void scheduleStop();
    void markRequested();
    void stopRequested();
    void recordingFailed();
    void showLine();
    void showSaving();
    int printResult();

    const RecordCommand& command_;
    Ending& ending_;
    L10n texts_;
    Terminal terminal_;
    MarkSignal markSignal_;
    QSocketNotifier markNotifier_{markSignal_.descriptor(), QSocketNotifier::Read};
    RecordingViewModel* model_ = nullptr; // from `run` on
    RecordingState::Case state_ = RecordingState::Case::idle;
    bool hasBegun_ = false; // capture ran, so a failed recording can be salvaged
    std::optional<Clock::time_point> end_;
    QTimer endTimer_;
    QTimer silenceTimer_; // running from the last sound on
    QTimer lineTimer_;
};

} // namespace vantoro
