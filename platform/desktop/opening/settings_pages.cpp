// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/settings_pages.h"

#include <optional>
#include <utility>

#include <QtCore/QStringList>

namespace vantoro::desktop {

namespace {

struct Pages {
    QStringList desktops; // in lower case
    std::vector<CommandLine> commands;
};

constexpr const char* gnomeSettings = "gnome-control-center";
constexpr const char* microphoneAnchor = "Privacy_Microphone";

/// Both permissions lead to the sound settings: no desktop has a setting for system audio, and only
/// GNOME has one for microphones.
const std::vector<Pages>& knownDesktops() {
    static const std::vector<Pages> known{
        {.desktops = {"gnome", "unity", "pantheon", "budgie"},
         .commands = {{gnomeSettings, "sound"}}},
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

/// GNOME's page with the switch for microphones: one of its own up to GNOME 44, since then behind
/// the privacy page. An unknown page would open the overview.
std::optional<CommandLine> microphoneSwitch(const std::function<bool(const char* name)>& hasEntry) {
    for (const auto& [entry, page] : {std::pair("gnome-microphone-panel.desktop", "microphone"),
                                      std::pair("gnome-privacy-panel.desktop", "privacy")}) {
        if (hasEntry(entry)) {
            return CommandLine{gnomeSettings, page};
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<CommandLine>
privacySettingsPages(const std::string& desktops, const std::string& anchor,
                     const std::function<bool(const char* name)>& hasEntry) {
    if (anchor != microphoneAnchor && anchor != "Privacy_ScreenCapture") {
        return {};
    }
    auto pages = ownPages(desktops);
    if (anchor == microphoneAnchor && !pages.empty() && pages.front().front() == gnomeSettings) {
        if (auto page = microphoneSwitch(hasEntry)) {
            pages.insert(pages.begin(), *std::move(page));
        }
    }
    // Mixers for any desktop, in case its own page is missing.
    pages.push_back({"pavucontrol"});
    pages.push_back({"pwvucontrol"});
    return pages;
}

} // namespace vantoro::desktop
