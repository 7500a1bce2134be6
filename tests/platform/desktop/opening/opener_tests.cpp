// SPDX-License-Identifier: GPL-3.0-or-later

#include <filesystem>
#include <string>

#include <unistd.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QStringList>

#include "platform/desktop/opening/file_uri.h"
#include "tests/platform/desktop/opening/opener_fixture.h"

namespace vantoro::testing {
namespace {

const QString managerName = "org.freedesktop.FileManager1";
const QString foldersName = "org.example.Folders";

/// The one URI in the question.
std::string addressIn(const std::optional<QDBusMessage>& question) {
    const auto addresses = question ? question->arguments().value(0).toStringList() : QStringList();
    return addresses.size() == 1 ? addresses.front().toStdString() : std::string();
}

std::string memberOf(const std::optional<QDBusMessage>& question) {
    return question ? question->member().toStdString() : std::string();
}

TEST_F(OpenerTest, revealSelectsTheFileInTheFileManager) {
    const BusService manager(privateBus, managerName, agreeing());
    const auto file = makeFile("a.m4a");
    opener().reveal(file);
    const auto question = questions.next();
    ASSERT_EQ(memberOf(question), "ShowItems");
    EXPECT_EQ(question->path(), "/org/freedesktop/FileManager1");
    EXPECT_EQ(question->interface(), managerName);
    EXPECT_EQ(question->signature(), "ass");
    EXPECT_EQ(addressIn(question), "file://" + file.string());
    EXPECT_EQ(question->arguments().value(1), QString());
}

TEST_F(OpenerTest, revealTakesAnyName) {
    const BusService manager(privateBus, managerName, agreeing());
    for (const auto* name : {"two words", "\xC3\xBC", "100% #1?", "\xFC\xFF.m4a"}) {
        const auto file = makeFile(name);
        opener().reveal(file);
        const auto address = addressIn(questions.next());
        EXPECT_EQ(address, desktop::fileURI(file));
        EXPECT_EQ(desktop::fileOfURI(address), file);
    }
}

TEST_F(OpenerTest, revealStartsTheFileManager) {
    privateBus.addStartableService(managerName);
    surroundings.limit = std::chrono::seconds(1); // the service started here never appears
    opener().reveal(makeFile("a.m4a"));
    EXPECT_TRUE(warnings().next());
    EXPECT_TRUE(privateBus.startedAService());
}

TEST_F(OpenerTest, revealOpensTheFolderWhereThereIsNoFileManager) {
    const BusService folders(applications.bus(), foldersName, agreeing());
    const auto file = makeFile("a.m4a");
    opener().reveal(file);
    const auto question = questions.next();
    EXPECT_EQ(memberOf(question), "Open");
    EXPECT_EQ(addressIn(question), "file://" + folder.string());
}

TEST_F(OpenerTest, revealOpensTheFolderWhereTheFileManagerCannotSelect) {
    const BusService manager(privateBus, managerName, refusing("ShowFolders"));
    opener().reveal(makeFile("a.m4a"));
    EXPECT_EQ(memberOf(questions.next()), "ShowItems");
    const auto question = questions.next();
    EXPECT_EQ(memberOf(question), "ShowFolders");
    EXPECT_EQ(addressIn(question), "file://" + folder.string());
}

TEST_F(OpenerTest, revealMakesNoFolder) {
    const BusService manager(privateBus, managerName, refusing());
    opener().reveal(folder / "gone" / "a.m4a");
    EXPECT_EQ(warnings().next(), "Cannot open " + (folder / "gone" / "a.m4a").string());
    EXPECT_FALSE(std::filesystem::exists(folder / "gone"));
}

TEST_F(OpenerTest, hangingFileManagerIsNotWaitedForLong) {
    constexpr auto limit = std::chrono::seconds(1);
    const BusService manager(privateBus, managerName, silent());
    surroundings.limit = limit;
    QElapsedTimer timer;
    timer.start();
    opener().reveal(makeFile("a.m4a"));
    EXPECT_EQ(memberOf(questions.next()), "ShowItems");
    EXPECT_EQ(memberOf(questions.next()), "ShowFolders");
    EXPECT_TRUE(warnings().next());
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST_F(OpenerTest, hangingFileManagerKeepsNothingElseWaiting) {
    const BusService manager(privateBus, managerName, silent());
    const auto file = makeFile("a.m4a");
    opener().reveal(file);
    EXPECT_EQ(memberOf(questions.next()), "ShowItems");
    opener().open(file);
    EXPECT_TRUE(applications.nextStarted());
    current.reset(); // before the file manager, whose end would be reported
}

TEST_F(OpenerTest, endDoesNotWaitForAHangingFileManager) {
    const BusService manager(privateBus, managerName, silent());
    surroundings.limit = std::chrono::minutes(10);
    opener().reveal(makeFile("a.m4a"));
    EXPECT_EQ(memberOf(questions.next()), "ShowItems");
    QElapsedTimer timer;
    timer.start();
    current.reset();
    EXPECT_LT(timer.elapsed(), 20'000);
    EXPECT_TRUE(questions.empty()); // nothing else is tried
}

TEST_F(OpenerTest, endDoesNotWaitForAHangingApplication) {
    const BusService folders(applications.bus(), foldersName, silent());
    surroundings.limit = std::chrono::minutes(10);
    opener().openFolder(folder);
    EXPECT_EQ(memberOf(questions.next()), "Open");
    QElapsedTimer timer;
    timer.start();
    current.reset();
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST_F(OpenerTest, fileIsOpenedWithItsApplication) {
    for (const auto* name : {"a.m4a", "two words.m4a", "\xC3\xBC.m4a", "100% #1?.m4a",
                             "\xFC\xFF.m4a", "quote'\"$HOME.m4a"}) {
        const auto file = makeFile(name);
        opener().open(file);
        const auto started = applications.nextStarted();
        ASSERT_TRUE(started) << name;
        EXPECT_EQ(started->name, "opener");
        EXPECT_EQ(started->arguments, std::vector<std::string>{file.string()});
    }
}

TEST_F(OpenerTest, applicationIsNeitherOurChildNorInOurSession) {
    opener().open(makeFile("a.m4a"));
    const auto started = applications.nextStarted();
    ASSERT_TRUE(started);
    EXPECT_NE(started->session, ::getsid(0));
    EXPECT_NE(started->session, 0);
    EXPECT_NE(started->parent, ::getpid());
}

TEST_F(OpenerTest, fileWithoutAnApplicationIsRevealed) {
    const BusService manager(privateBus, managerName, agreeing());
    const auto file = makeFile("a.orphan");
    opener().open(file);
    const auto question = questions.next();
    EXPECT_EQ(memberOf(question), "ShowItems");
    EXPECT_EQ(addressIn(question), "file://" + file.string());
}

TEST_F(OpenerTest, fileThatIsGoneLeadsToItsFolder) {
    const BusService manager(privateBus, managerName, refusing("ShowFolders"));
    opener().open(folder / "gone.m4a");
    EXPECT_EQ(memberOf(questions.next()), "ShowItems");
    EXPECT_EQ(addressIn(questions.next()), "file://" + folder.string());
}

TEST_F(OpenerTest, fileThatNothingOpensIsNamed) {
    const auto file = makeFile("a.orphan");
    opener().open(file);
    EXPECT_EQ(warnings().next(), "Cannot open " + file.string());
}

TEST_F(OpenerTest, nothingIsOpenedWithoutABus) {
    surroundings.sessionBus = "";
    const auto file = makeFile("a.orphan");
    opener().reveal(file);
    EXPECT_EQ(warnings().next(), "Cannot open " + file.string());
}

TEST_F(OpenerTest, folderIsMadeAndOpenedWithItsApplication) {
    const BusService folders(applications.bus(), foldersName, agreeing());
    const auto made = folder / "some new" / "f\xC3\xB6lder";
    opener().openFolder(made);
    const auto question = questions.next();
    EXPECT_EQ(memberOf(question), "Open");
    EXPECT_EQ(addressIn(question), desktop::fileURI(made));
    EXPECT_TRUE(std::filesystem::is_directory(made));
}

TEST_F(OpenerTest, folderWhoseApplicationFailsIsShownByTheFileManager) {
    const BusService manager(privateBus, managerName, agreeing());
    opener().openFolder(folder);
    const auto question = questions.next();
    ASSERT_EQ(memberOf(question), "ShowFolders");
    EXPECT_EQ(question->signature(), "ass");
    EXPECT_EQ(addressIn(question), "file://" + folder.string());
}

TEST_F(OpenerTest, folderThatCannotBeMadeIsAskedForAllTheSame) {
    const BusService manager(privateBus, managerName, agreeing());
    const auto impossible = makeFile("a.m4a") / "folder";
    opener().openFolder(impossible);
    EXPECT_EQ(addressIn(questions.next()), "file://" + impossible.string());
}

} // namespace
} // namespace vantoro::testing
