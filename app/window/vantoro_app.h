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
#include "app/window/remote_recording.h"
#include "app/window/saving_first.h"
#include "control/recording_view_model.h"
#include "l10n/language_settings.h"
#include "ui/ports/status_area.h"
#include "ui/window/main_window.h"
#include "update/update_checker.h"

namespace vantoro {

/// The desktop around the program's window. All of it outlives the program.
struct WindowPlatform {
    StatusArea& statusArea;
    /// As XDG_CURRENT_DESKTOP has them.
    std::string desktops;
    std::string version;            ///< of this program
    AskForRecord askForRecord;      ///< of the latest version
    std::function<void()> launched; ///< the window stands: what is dear may begin
    /// A recording has come a step further, or will go to another folder.
    std::function<void(RecordingState::Case state, const std::filesystem::path& folder)> moved;
    std::function<void()> quits; ///< the user wants the program to end
    std::function<void()> stays; ///< and thinks better of it, since something could not be saved
    std::function<void()> end;   ///< ends the event loop
};

/// The program with a window: the three objects that live as long as it does, the window that shows
/// them, and the delegate. Main thread.
class VantoroApp final : public QObject {
public:
    /// Shows the window, and once that stands the meters in the status area.
    VantoroApp(std::unique_ptr<Recorder> recorder, const ControlPlatform& platform,
               WindowPlatform windowPlatform);

    /// Brings the window to the front. With the token the desktop lets us; it may be empty.
    void activate(const std::string& activationToken);

    /// Start or stop a recording without a window in front; it comes there, with the token's leave,
    /// when that fails. Do nothing where a recording runs already, or none does.
    void startRecording(const std::string& activationToken);
    void stopRecording(const std::string& activationToken);

    /// What becomes of the program when a recording could not be saved.
    enum class IfNotSaved : std::uint8_t {
        stay, ///< the user reads why, and may ask again
        end,  ///< what was captured waits in the recording folder for the next start
    };

    /// Ends the program, once what is being recorded is saved; meanwhile the window shows that.
    void quit(IfNotSaved ifNotSaved);

    /// Returns when what is being recorded is saved, or could not be, or has taken `patience`: what
    /// was captured waits in the recording folder then. The event loop runs on meanwhile, within
    /// the call: the session ends as soon as it returns, and cannot be told later.
    void saveBeforeTheSessionEnds(std::chrono::milliseconds patience);

private:
    void followWindow();
    void followRecording();
    /// What the window did not have to wait for.
    void endLaunch();
    /// Out of sight, but not out of reach.
    void putWindowAway();

    WindowPlatform platform_;
    AppDelegate appDelegate_;
    RecordingViewModel viewModel_;
    LanguageSettings languageSettings_;
    UpdateChecker updateChecker_;
    SavingFirst savingFirst_;
    MainWindow window_;
    RemoteRecording remoteRecording_;
    bool hasLaunched_ = false;
};

} // namespace vantoro
