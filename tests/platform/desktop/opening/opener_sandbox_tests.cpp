// SPDX-License-Identifier: GPL-3.0-or-later

#include <filesystem>
#include <string>

#include <fcntl.h>

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusUnixFileDescriptor>

#include "tests/platform/desktop/opening/opener_fixture.h"

namespace vantoro::testing {
namespace {

const QString portalName = "org.freedesktop.portal.Desktop";

class SandboxedOpenerTest : public OpenerTest {
protected:
    void SetUp() override {
        OpenerTest::SetUp();
        enterSandbox();
    }

    /// The file passed to the portal; also checks that the call is correct.
    std::filesystem::path fileOf(const std::optional<QDBusMessage>& question,
                                 const QString& method) {
        EXPECT_TRUE(question);
        if (!question) {
            return {};
        }
        EXPECT_EQ(question->path(), "/org/freedesktop/portal/desktop");
        EXPECT_EQ(question->interface(), "org.freedesktop.portal.OpenURI");
        EXPECT_EQ(question->member(), method);
        EXPECT_EQ(question->signature(), "sha{sv}");
        EXPECT_EQ(question->arguments().value(0), QString());
        const auto descriptor = question->arguments().value(1).value<QDBusUnixFileDescriptor>();
        const int mode = ::fcntl(descriptor.fileDescriptor(), F_GETFL);
        EXPECT_EQ(mode & (O_ACCMODE | O_PATH), O_RDONLY);
        std::error_code unknown;
        return std::filesystem::read_symlink(
            "/proc/self/fd/" + std::to_string(descriptor.fileDescriptor()), unknown);
    }
};

TEST_F(SandboxedOpenerTest, fileIsOpenedByThePortal) {
    const BusService portal(privateBus, portalName, agreeing());
    for (const auto* name : {"a.m4a", "100% #1?", "\xFC\xFF.m4a"}) {
        const auto file = makeFile(name);
        opener().open(file);
        EXPECT_EQ(fileOf(questions.next(), "OpenFile"), file);
    }
}

TEST_F(SandboxedOpenerTest, fileThatThePortalDoesNotOpenIsRevealed) {
    const BusService portal(privateBus, portalName, refusing("OpenDirectory"));
    const auto file = makeFile("a.m4a");
    opener().open(file);
    EXPECT_EQ(fileOf(questions.next(), "OpenFile"), file);
    EXPECT_EQ(fileOf(questions.next(), "OpenDirectory"), file);
}

TEST_F(SandboxedOpenerTest, fileIsRevealedByThePortal) {
    const BusService portal(privateBus, portalName, agreeing());
    const auto file = makeFile("a.m4a");
    opener().reveal(file);
    EXPECT_EQ(fileOf(questions.next(), "OpenDirectory"), file);
}

TEST_F(SandboxedOpenerTest, folderOfAFileThatIsGoneIsOpened) {
    const BusService portal(privateBus, portalName, agreeing());
    opener().reveal(folder / "gone");
    EXPECT_EQ(fileOf(questions.next(), "OpenFile"), folder);
}

TEST_F(SandboxedOpenerTest, folderIsMadeAndOpenedItself) {
    const BusService portal(privateBus, portalName, agreeing());
    const auto made = folder / "some" / "new";
    opener().openFolder(made);
    EXPECT_EQ(fileOf(questions.next(), "OpenFile"), made);
}

TEST_F(SandboxedOpenerTest, nothingIsAskedButThePortal) {
    const BusService manager(privateBus, "org.freedesktop.FileManager1", agreeing());
    const auto file = makeFile("a.m4a");
    opener().open(file);
    EXPECT_EQ(warnings().next(), "Cannot open " + file.string());
    EXPECT_TRUE(questions.empty());
}

TEST_F(SandboxedOpenerTest, hangingPortalIsNotWaitedForLong) {
    const BusService portal(privateBus, portalName, silent());
    surroundings.limit = std::chrono::milliseconds(300);
    opener().open(makeFile("a.m4a"));
    for (const auto* method : {"OpenFile", "OpenDirectory", "OpenFile"}) {
        fileOf(questions.next(), method);
    }
    EXPECT_TRUE(warnings().next());
}

TEST_F(SandboxedOpenerTest, helpIsOpenedByThePortal) {
    const BusService portal(privateBus, portalName, agreeing());
    const auto page = makeFile("page.html");
    surroundings.helpPage = "file://" + page.string();
    opener().openPrivacySettings("Privacy_Microphone");
    EXPECT_EQ(fileOf(questions.next(), "OpenFile"), page);
}

TEST_F(SandboxedOpenerTest, pageOfTheWebIsOpenedByThePortal) {
    const BusService portal(privateBus, portalName, agreeing());
    opener().openPage("https://example.org/help");
    const auto question = questions.next();
    ASSERT_TRUE(question);
    EXPECT_EQ(question->member(), "OpenURI");
    EXPECT_EQ(question->signature(), "ssa{sv}");
    EXPECT_EQ(question->arguments().value(1), "https://example.org/help");
}

} // namespace
} // namespace vantoro::testing
