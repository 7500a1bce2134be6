// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QtCore/QObject>

#include "app/window/status_scene.h"
#include "control/audio_level_store.h"
#include "l10n/l10n.h"
#include "l10n/preferences.h"
#include "ui/meters/level_pictures.h"
#include "ui/ports/status_area.h"

namespace vantoro {

/// Owns what belongs to the program rather than to its window: the application icon and the two
/// level meters in the status area, which exist from the end of launch. Main thread.
class AppDelegate final : public QObject {
public:
    /// The delegate's dependencies; all must outlive it.
    struct Surroundings {
        StatusArea& statusArea;
        AudioLevelStore& levels;
        const Preferences& preferences;
        /// In the form of XDG_CURRENT_DESKTOP.
        std::string desktops;
        /// Called on a click on a meter.
        std::function<void(const std::string& activationToken)> showMainWindow;
        /// Called for a row of a meter's menu.
        std::function<void(StatusAreaCommand command, const std::string& activationToken)> carryOut;
    };

    explicit AppDelegate(Surroundings surroundings);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate() override = default;

    /// Call before the window is created.
    static void applicationWillFinishLaunching();
    /// Call after the window was first shown.
    void applicationDidFinishLaunching();
    /// Also shows a change of the language in the meters' menus.
    void setScene(const StatusScene& scene);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static void applyApplicationIcon();
    void registerStatusItems();
    std::unique_ptr<StatusItem> makeStatusItem(const std::string& autosaveName,
                                               L10n::Key toolTip) const;
    void showLevels();
    void showScene();
    bool isRecording() const;
    void updateStatusItems(double systemLevel, double microphoneLevel);
    std::string description(AudioLevelSource source, L10n::Key name) const;

    Surroundings surroundings_;
    L10n texts_;
    LevelPictures pictures_;
    StatusScene scene_;
    std::unique_ptr<StatusItem> systemAudioStatusItem_; // both set once registered
    std::unique_ptr<StatusItem> microphoneStatusItem_;
    QMetaObject::Connection levelSubscription_;
};

} // namespace vantoro
