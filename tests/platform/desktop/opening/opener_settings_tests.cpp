// SPDX-License-Identifier: GPL-3.0-or-later

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/desktop/opening/file_uri.h"
#include "tests/platform/desktop/opening/opener_fixture.h"

namespace vantoro::testing {
namespace {

class OpenerSettingsTest : public OpenerTest {
protected:
    void install(const std::string& program) const {
        applications.addProgram(folder / "programs" / program);
    }

    /// The started program and its arguments, or empty.
    std::vector<std::string> shown(const std::string& anchor) {
        opener().openPrivacySettings(anchor);
        const auto started = applications.nextStarted();
        if (!started) {
            return {};
        }
        std::vector<std::string> line{started->name};
        line.insert(line.end(), started->arguments.begin(), started->arguments.end());
        return line;
    }
};

using Line = std::vector<std::string>;

TEST_F(OpenerSettingsTest, areTheDesktops) {
    surroundings.desktops = "ubuntu:GNOME";
    install("pavucontrol");
    install("gnome-control-center");
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"gnome-control-center", "sound"}));
    EXPECT_EQ(shown("Privacy_ScreenCapture"), (Line{"gnome-control-center", "sound"}));
}

TEST_F(OpenerSettingsTest, areTheFirstOnesThatAreInstalled) {
    surroundings.desktops = "KDE";
    std::filesystem::create_directories(folder / "programs" / "systemsettings"); // not a program
    std::ofstream(folder / "programs" / "systemsettings6") << "not executable";
    install("kcmshell5");
    install("systemsettings5");
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"systemsettings5", "kcm_pulseaudio"}));
}

TEST_F(OpenerSettingsTest, areLookedForInAllFolders) {
    surroundings.searchPath = "/nonexistent:" + folder.string() + ":" + surroundings.searchPath;
    install("pwvucontrol");
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pwvucontrol"});
}

TEST_F(OpenerSettingsTest, programThatDoesNotStartIsPassedOver) {
    install("pwvucontrol");
    install("pavucontrol");
    std::ofstream(folder / "programs" / "pavucontrol") << "#!/nonexistent/interpreter\n";
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pwvucontrol"});
}

TEST_F(OpenerSettingsTest, programIsNeitherOurChildNorInOurSession) {
    install("pavucontrol");
    opener().openPrivacySettings("Privacy_Microphone");
    const auto started = applications.nextStarted();
    ASSERT_TRUE(started);
    EXPECT_NE(started->session, ::getsid(0));
    EXPECT_NE(started->session, 0);
    EXPECT_NE(started->parent, ::getpid());
}

TEST_F(OpenerSettingsTest, unknownPermissionShowsNothing) {
    // Starts no program, and no warning says that there is none.
    opener().openPrivacySettings("Privacy_Camera");
    install("pavucontrol");
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pavucontrol"});
    current.reset(); // finishes all work
    EXPECT_TRUE(warnings().empty());
    EXPECT_FALSE(applications.hasStarted());
}

TEST_F(OpenerSettingsTest, helpIsShownWhereNothingIsInstalled) {
    const auto page = makeFile("100% help.html");
    surroundings.helpPage = desktop::fileURI(page);
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"browser", page.string()}));
}

TEST_F(OpenerSettingsTest, helpMayBeOnTheWeb) {
    surroundings.helpPage = "https://example.org/help";
    EXPECT_EQ(shown("Privacy_ScreenCapture"), (Line{"browser", surroundings.helpPage}));
}

TEST_F(OpenerSettingsTest, helpIsTheInstalledPageUnlessThereIsAnother) {
    const auto page = applications.dataFolder() / "vantoro" / "help" / "privacy.html";
    std::filesystem::create_directories(page.parent_path());
    std::ofstream(page) << "help";
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"browser", page.string()}));
    std::filesystem::remove(page);
}

TEST_F(OpenerSettingsTest, missingHelpIsReported) {
    opener().openPrivacySettings("Privacy_Microphone");
    EXPECT_EQ(warnings().next(), "Cannot open the settings Privacy_Microphone");
}

} // namespace
} // namespace vantoro::testing
