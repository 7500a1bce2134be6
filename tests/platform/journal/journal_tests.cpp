// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/journal/journal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/journal/recent_faults.h"
#include "platform/posix/file_descriptor.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using journal::Journal;
using Level = RecordingLog::Level;

class JournalTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path path = folder / "socket";

    /// Where the journal would receive entries.
    posix::FileDescriptor listen() const {
        posix::FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0));
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        return socket;
    }

    static std::string received(const posix::FileDescriptor& socket) {
        std::array<char, 1000> entry{};
        const auto length = ::recv(socket.get(), entry.data(), entry.size(), 0);
        return {entry.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
    }

    /// What `write` prints on standard error.
    static std::string printed(Journal& journal, Level level) {
        ::testing::internal::CaptureStderr();
        journal.write(level, "words", "name");
        return ::testing::internal::GetCapturedStderr();
    }
};

TEST_F(JournalTest, entryHasItsLevelAndTheRecordingsName) {
    const auto socket = listen();
    Journal journal(Journal::WithoutJournal::printFaults, path);
    EXPECT_EQ(printed(journal, Level::warning), "");
    EXPECT_EQ(received(socket),
              "PRIORITY=4\nSYSLOG_IDENTIFIER=vantoro\nMESSAGE=words\nVANTORO_RECORDING=name\n");
}

TEST_F(JournalTest, entryIsOneLineAndMayBeAboutNoRecording) {
    const auto socket = listen();
    Journal(Journal::WithoutJournal::discard, path)
        .write(Level::information, "two\nPRIORITY=0\nlines", "");
    EXPECT_EQ(received(socket),
              "PRIORITY=6\nSYSLOG_IDENTIFIER=vantoro\nMESSAGE=two PRIORITY=0 lines\n");
}

/// Would hang if an entry were waited for.
TEST_F(JournalTest, journalThatTakesNothingIsNotWaitedFor) {
    const auto socket = listen();
    Journal journal(Journal::WithoutJournal::printFaults, path);
    ::testing::internal::CaptureStderr();
    for (int number = 0; number < 2000; ++number) {
        journal.write(Level::error, std::string(500, 'x'), "name");
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(received(socket), "");
}

TEST_F(JournalTest, faultsAreOnStandardErrorWithoutAJournal) {
    Journal journal(Journal::WithoutJournal::printFaults, path);
    EXPECT_EQ(printed(journal, Level::error), "vantoro: words\n");
    EXPECT_EQ(printed(journal, Level::warning), "vantoro: words\n");
    EXPECT_EQ(printed(journal, Level::notice), "");
    Journal silent(Journal::WithoutJournal::discard, path);
    EXPECT_EQ(printed(silent, Level::error), "");
}

TEST_F(JournalTest, pathThatIsTooLongIsNoJournal) {
    Journal journal(Journal::WithoutJournal::printFaults, folder.path() / std::string(200, 'x'));
    EXPECT_EQ(printed(journal, Level::error), "vantoro: words\n");
}

TEST_F(JournalTest, thereAreNoFaultsWithoutJournalFiles) {
    EXPECT_TRUE(journal::recentFaults(3, {}, folder.path()).empty());
    EXPECT_TRUE(journal::recentFaults(3, {}, folder.path() / "missing").empty());
}

} // namespace
} // namespace vantoro::testing
