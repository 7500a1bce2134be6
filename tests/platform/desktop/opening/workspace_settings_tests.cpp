// SPDX-License-Identifier: GPL-3.0-or-later

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/desktop/opening/file_uri.h"
#include "tests/platform/desktop/opening/workspace_fixture.h"

namespace vantoro::testing {
namespace {

class WorkspaceSettingsTest : public WorkspaceTest {
protected:
    void install(const std::string& program) const {
        applications.addProgram(folder / "programs" / program);
    }

    /// The program that was started for it and its arguments, or nothing.
    std::vector<std::string> shown(const std::string& anchor) {
        workspace().openPrivacySettings(anchor);
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

TEST_F(WorkspaceSettingsTest, areTheDesktops) {
    surroundings.desktops = "ubuntu:GNOME";
    install("pavucontrol");
    install("gnome-control-center");
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"gnome-control-center", "sound"}));
    EXPECT_EQ(shown("Privacy_ScreenCapture"), (Line{"gnome-control-center", "sound"}));
}

TEST_F(WorkspaceSettingsTest, areTheFirstOnesThatAreInstalled) {
    surroundings.desktops = "KDE";
    std::filesystem::create_directories(folder / "programs" / "systemsettings"); // no program
    std::ofstream(folder / "programs" / "systemsettings6") << "not executable";
    install("kcmshell5");
    install("systemsettings5");
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"systemsettings5", "kcm_pulseaudio"}));
}

TEST_F(WorkspaceSettingsTest, areLookedForInAllFolders) {
    surroundings.searchPath = "/nonexistent:" + folder.string() + ":" + surroundings.searchPath;
    install("pwvucontrol");
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pwvucontrol"});
}

TEST_F(WorkspaceSettingsTest, programThatDoesNotStartIsPassedOver) {
    install("pwvucontrol");
    install("pavucontrol");
    std::ofstream(folder / "programs" / "pavucontrol") << "#!/nonexistent/interpreter\n";
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pwvucontrol"});
}

TEST_F(WorkspaceSettingsTest, programIsNeitherOurChildNorInOurSession) {
    install("pavucontrol");
    workspace().openPrivacySettings("Privacy_Microphone");
    const auto started = applications.nextStarted();
    ASSERT_TRUE(started);
    EXPECT_NE(started->session, ::getsid(0));
    EXPECT_NE(started->session, 0);
    EXPECT_NE(started->parent, ::getpid());
}

TEST_F(WorkspaceSettingsTest, unknownPermissionShowsNothing) {
    // Neither a program nor a complaint that there is none.
    workspace().openPrivacySettings("Privacy_Camera");
    install("pavucontrol");
    EXPECT_EQ(shown("Privacy_Microphone"), Line{"pavucontrol"});
    current.reset(); // which has all of it done
    EXPECT_TRUE(warnings().empty());
    EXPECT_FALSE(applications.hasStarted());
}

TEST_F(WorkspaceSettingsTest, helpIsShownWhereNothingIsInstalled) {
    const auto page = makeFile("100% help.html");
    surroundings.helpPage = desktop::fileURI(page);
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"browser", page.string()}));
}

TEST_F(WorkspaceSettingsTest, helpMayBeOnTheWeb) {
    surroundings.helpPage = "https://example.org/help";
    EXPECT_EQ(shown("Privacy_ScreenCapture"), (Line{"browser", surroundings.helpPage}));
}

TEST_F(WorkspaceSettingsTest, helpIsTheInstalledPageUnlessThereIsAnother) {
    const auto page = applications.dataFolder() / "vantoro" / "help" / "privacy.html";
    std::filesystem::create_directories(page.parent_path());
    std::ofstream(page) << "help";
    EXPECT_EQ(shown("Privacy_Microphone"), (Line{"browser", page.string()}));
    std::filesystem::remove(page);
}

TEST_F(WorkspaceSettingsTest, whereThereIsNoHelpEitherThatIsSaid) {
    workspace().openPrivacySettings("Privacy_Microphone");
    EXPECT_EQ(warnings().next(), "Cannot open the settings Privacy_Microphone");
}

} // namespace
} // namespace vantoro::testing
