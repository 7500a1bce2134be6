// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QtCore/QObject>

#include "control/audio_level_store.h"
#include "l10n/l10n.h"
#include "l10n/preferences.h"
#include "ui/meters/level_pictures.h"
#include "ui/ports/status_area.h"

namespace vantoro {

/// Sees to what belongs to the program rather than to its window: its icon, and the two level
/// meters in the desktop's status area, from the end of the launch until its own end. Main thread.
class AppDelegate final : public QObject {
public:
    /// What it works with; all of it outlives it.
    struct Surroundings {
        StatusArea& statusArea;
        AudioLevelStore& levels;
        const Preferences& preferences;
        /// As XDG_CURRENT_DESKTOP has them.
        std::string desktops;
        /// A click on a meter.
        std::function<void(const std::string& activationToken)> showMainWindow;
    };

    explicit AppDelegate(Surroundings surroundings);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate() override;

    /// Before the window is made.
    static void applicationWillFinishLaunching();
    /// After it was shown first.
    void applicationDidFinishLaunching();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static void applyApplicationIcon();
    void registerStatusItems();
    std::unique_ptr<StatusItem> makeStatusItem(const std::string& autosaveName,
                                               L10n::Key toolTip) const;
    void showLevels();
    void updateStatusItems(double systemLevel, double microphoneLevel);
    std::string description(AudioLevelSource source, L10n::Key name) const;

    Surroundings surroundings_;
    L10n texts_;
    LevelPictures pictures_;
    std::unique_ptr<StatusItem> systemAudioStatusItem_; // both from the registration on
    std::unique_ptr<StatusItem> microphoneStatusItem_;
    QMetaObject::Connection levelSubscription_;
    QMetaObject::Connection conditionSubscription_;
};

} // namespace vantoro
