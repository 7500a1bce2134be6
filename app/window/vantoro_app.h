// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include <QtCore/QObject>

#include "app/window/app_delegate.h"
#include "app/window/notices.h"
#include "app/window/remote_recording.h"
#include "app/window/saving_first.h"
#include "control/recording_view_model.h"
#include "l10n/language_settings.h"
#include "ui/ports/notifications.h"
#include "ui/ports/status_area.h"
#include "ui/ports/task_bar_entry.h"
#include "ui/window/main_window.h"
#include "update/update_checker.h"

namespace vantoro {

/// The platform services around the window. All must outlive the `VantoroApp`.
struct WindowPlatform {
    StatusArea& statusArea;
    Notifications& notifications;
    TaskBarEntry& taskBarEntry;
    /// In the form of XDG_CURRENT_DESKTOP.
    std::string desktops;
    std::string version;            ///< of this program
    AskForRecord askForRecord;      ///< of the latest version
    std::function<void()> launched; ///< the window is visible; expensive work may start
    /// The recording made progress, or its folder changed.
    std::function<void(RecordingState::Case state, const std::filesystem::path& folder)> progressed;
    std::function<void()> quits; ///< the user quits
    std::function<void()> stays; ///< the user stays after all, because saving failed
    std::function<void()> end;   ///< ends the event loop
};

/// The program with a window: its three long-lived objects, the window that shows them, and the
/// delegate. Main thread.
class VantoroApp final : public QObject {
public:
    /// Shows the window, then the meters in the status area.
    VantoroApp(std::unique_ptr<Recorder> recorder, const ControlPlatform& platform,
               WindowPlatform windowPlatform);

    /// Brings the window to the front. Some desktops require the token; it may be empty.
    void activate(const std::string& activationToken);

    RecordingViewModel& recording() { return viewModel_; }

    /// See `RemoteRecording`.
    void startRecording(const std::string& activationToken);
    void stopRecording(const std::string& activationToken);

    /// What `quit` does if a recording could not be saved.
    enum class IfNotSaved : std::uint8_t {
        stay, ///< the user reads why, and may quit again
        end,  ///< the captured sound is salvaged at the next start
    };

    /// Ends the program after saving the recording; the window shows the progress.
    void quit(IfNotSaved ifNotSaved);

    /// Runs the event loop until the recording is saved, saving fails, or `patience` is over: the
    /// session ends as soon as this returns.
    void saveBeforeSessionEnd(std::chrono::milliseconds patience);

private:
    void followWindow();
    void followRecording();
    /// Tells the meters what is not about levels.
    void showScene();
    void showProgress();
    void carryOut(StatusAreaCommand command, const std::string& activationToken);
    /// Starts what the window did not have to wait for.
    void endLaunch();
    /// Hides the window if a meter can bring it back, else minimises it.
    void hideOrMinimise();
    void startNotices();
    /// Whether the user is in the window, or in a dialog of it.
    bool isWindowInFront() const;

    WindowPlatform platform_;
    Opener& opener_;
    const Preferences& preferences_;
    AppDelegate appDelegate_;
    RecordingViewModel viewModel_;
    LanguageSettings languageSettings_;
    UpdateChecker updateChecker_;
    SavingFirst savingFirst_;
    MainWindow window_;
    RemoteRecording remoteRecording_;
    std::unique_ptr<Notices> notices_; ///< once launched
    bool hasLaunched_ = false;
};

} // namespace vantoro
