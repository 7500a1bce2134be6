// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include <QtCore/QObject>

#include "app/window/notice_rules.h"
#include "control/recording_view_model.h"
#include "l10n/l10n.h"
#include "l10n/preferences.h"
#include "ui/ports/notifications.h"

namespace vantoro {

/// Tells a user who does not see the window what happens to the recording. Main thread.
class Notices final : public QObject {
public:
    /// All references must outlive it.
    struct Surroundings {
        RecordingViewModel& model;
        Notifications& notifications;
        Opener& opener;
        const Preferences& preferences;
        std::function<bool()> isWindowInFront;
        /// Called on a click on a notification.
        std::function<void(const std::string& activationToken)> showMainWindow;
    };

    explicit Notices(Surroundings surroundings);
    Notices(const Notices&) = delete;
    Notices& operator=(const Notices&) = delete;
    ~Notices() override;

    /// The window says the same.
    void windowCameToFront();

private:
    void stateChanged();
    void showOutcome(Outcome outcome);
    void lookAtSources();
    void lookAt(AudioLevelSource source, SourceCondition condition);
    void carryOut(const std::string& topic, const std::string& action, const std::string& token);

    Surroundings surroundings_;
    L10n texts_;
    RecordingState::Case state_;
    std::array<TroubleWatch, 2> troubles_; // by source
    int outcomes_ = 0;
    std::map<std::string, std::optional<std::filesystem::path>> shown_; // recordings by topic
};

} // namespace vantoro
