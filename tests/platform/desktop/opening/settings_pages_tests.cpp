// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/settings_pages.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::CommandLine;
using desktop::privacySettingsPages;

bool noEntry(const char* /*name*/) {
    return false;
}

std::vector<CommandLine> mixersAfter(std::vector<CommandLine> pages) {
    pages.push_back({"pavucontrol"});
    pages.push_back({"pwvucontrol"});
    return pages;
}

TEST(SettingsPagesTest, areTheDesktopsOwnFirst) {
    const auto gnome = mixersAfter({{"gnome-control-center", "sound"}});
    const auto kde = mixersAfter({{"systemsettings", "kcm_pulseaudio"},
                                  {"systemsettings6", "kcm_pulseaudio"},
                                  {"systemsettings5", "kcm_pulseaudio"},
                                  {"kcmshell6", "kcm_pulseaudio"},
                                  {"kcmshell5", "kcm_pulseaudio"}});
    const auto cinnamon = mixersAfter({{"cinnamon-settings", "sound"}});

    struct Case {
        std::string desktops;
        std::vector<CommandLine> expected;
    };

    for (const auto& [desktops, expected] : {
             Case{"GNOME", gnome}, Case{"gnome", gnome}, Case{"ubuntu:GNOME", gnome},
             Case{"Unity:Unity7:ubuntu", gnome}, Case{"Pantheon", gnome},
             Case{"Budgie:GNOME", gnome}, Case{"KDE", kde}, Case{"kde", kde},
             Case{"X-Cinnamon", cinnamon}, Case{"Cinnamon", cinnamon},
             Case{"MATE", mixersAfter({{"mate-volume-control"}})},
             Case{"LXQt", mixersAfter({{"pavucontrol-qt"}})}, Case{"XFCE", mixersAfter({})},
             Case{"sway", mixersAfter({})}, Case{"", mixersAfter({})}, Case{":::", mixersAfter({})},
             Case{"GNOMES:KDES", mixersAfter({})},
             Case{"KDE:GNOME", kde}, // the first name is the desktop itself
         }) {
        EXPECT_EQ(privacySettingsPages(desktops, "Privacy_Microphone", noEntry), expected)
            << desktops;
        EXPECT_EQ(privacySettingsPages(desktops, "Privacy_ScreenCapture", noEntry), expected)
            << desktops;
    }
}

TEST(SettingsPagesTest, theMicrophonesIsTheOneWithItsSwitch) {
    const CommandLine sound{"gnome-control-center", "sound"};
    for (const auto& [entry, page] : {std::pair("gnome-microphone-panel.desktop", "microphone"),
                                      std::pair("gnome-privacy-panel.desktop", "privacy")}) {
        const auto hasEntry = [installed = std::string(entry)](const char* name) {
            return installed == name;
        };
        EXPECT_EQ(privacySettingsPages("GNOME", "Privacy_Microphone", hasEntry),
                  mixersAfter({{"gnome-control-center", page}, sound}));
        EXPECT_EQ(privacySettingsPages("GNOME", "Privacy_ScreenCapture", hasEntry),
                  mixersAfter({sound}));
        EXPECT_EQ(privacySettingsPages("MATE", "Privacy_Microphone", hasEntry),
                  mixersAfter({{"mate-volume-control"}}));
    }
}

TEST(SettingsPagesTest, thereAreNoneForOtherPermissions) {
    for (const auto* anchor : {"", "Privacy", "Privacy_Camera", "privacy_microphone"}) {
        EXPECT_TRUE(privacySettingsPages("GNOME", anchor, noEntry).empty()) << anchor;
    }
}

} // namespace
} // namespace vantoro::testing
