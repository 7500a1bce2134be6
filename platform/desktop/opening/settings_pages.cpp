// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/settings_pages.h"

#include <QtCore/QStringList>

namespace vantoro::desktop {

namespace {

struct Pages {
    QStringList desktops; // in lower case
    std::vector<CommandLine> commands;
};

/// Both permissions lead to the sound settings: no desktop has a setting for system audio.
const std::vector<Pages>& knownDesktops() {
    static const std::vector<Pages> known{
        {.desktops = {"gnome", "unity", "pantheon", "budgie"},
         .commands = {{"gnome-control-center", "sound"}}},
        {.desktops = {"kde"},
         .commands = {{"systemsettings", "kcm_pulseaudio"},
                      {"systemsettings6", "kcm_pulseaudio"},
                      {"systemsettings5", "kcm_pulseaudio"},
                      {"kcmshell6", "kcm_pulseaudio"},
                      {"kcmshell5", "kcm_pulseaudio"}}},
        {.desktops = {"cinnamon", "x-cinnamon"}, .commands = {{"cinnamon-settings", "sound"}}},
        {.desktops = {"mate"}, .commands = {{"mate-volume-control"}}},
        {.desktops = {"lxqt"}, .commands = {{"pavucontrol-qt"}}},
    };
    return known;
}

/// The first known name decides, since the most specific name comes first.
std::vector<CommandLine> ownPages(const std::string& desktops) {
    for (const auto& name : QString::fromStdString(desktops).toLower().split(':')) {
        for (const auto& [known, commands] : knownDesktops()) {
            if (known.contains(name)) {
                return commands;
            }
        }
    }
    return {};
}

} // namespace

std::vector<CommandLine> privacySettingsPages(const std::string& desktops,
                                              const std::string& anchor) {
    if (anchor != "Privacy_Microphone" && anchor != "Privacy_ScreenCapture") {
        return {};
    }
    auto pages = ownPages(desktops);
    // Mixers for any desktop, in case its own page is missing.
    pages.push_back({"pavucontrol"});
    pages.push_back({"pwvucontrol"});
    return pages;
}

} // namespace vantoro::desktop
