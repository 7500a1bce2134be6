// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/default_recording_folder.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <QtCore/QByteArray>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(RecordingFolderTest, isInTheVideoFolderIfThereIsOne) {
    struct Case {
        const char* movies;
        const char* home;
        const char* expected;
    };

    for (const auto& [movies, home, expected] : {
             Case{"/home/user/Videos", "/home/user", "/home/user/Videos/Vantoro"},
             Case{"/home/user/Videos/", "/home/user/", "/home/user/Videos/Vantoro"},
             Case{"/data/films", "/home/user", "/data/films/Vantoro"},
             Case{"", "/home/user", "/home/user/Movies/Vantoro"},
             Case{"/home/user", "/home/user", "/home/user/Movies/Vantoro"},
             Case{"/home/user/", "/home/user", "/home/user/Movies/Vantoro"},
             Case{"/home/user", "/home/user/", "/home/user/Movies/Vantoro"},
             Case{"/home/user/.", "/home/user", "/home/user/Movies/Vantoro"},
             Case{"/", "/", "/Movies/Vantoro"},
         }) {
        EXPECT_EQ(desktop::recordingFolderIn(movies, home), expected) << movies;
    }
}

/// With a temporary home folder.
class DefaultRecordingFolderTest : public ::testing::Test {
protected:
    QTemporaryDir folder;
    std::string home = folder.path().toStdString();

    void SetUp() override {
        qputenv("HOME", folder.path().toUtf8());
        qputenv("XDG_CONFIG_HOME", folder.filePath(".config").toUtf8());
    }

    void TearDown() override {
        qputenv("HOME", homeBefore_);
        configurationBefore_.isNull()
            ? static_cast<void>(qunsetenv("XDG_CONFIG_HOME"))
            : static_cast<void>(qputenv("XDG_CONFIG_HOME", configurationBefore_));
    }

    void userChose(const std::string& videos) const {
        std::filesystem::create_directories(home + "/.config");
        std::ofstream(home + "/.config/user-dirs.dirs") << "XDG_VIDEOS_DIR=\"" + videos + "\"\n";
    }

private:
    QByteArray homeBefore_ = qgetenv("HOME");
    QByteArray configurationBefore_ = qgetenv("XDG_CONFIG_HOME");
};

TEST_F(DefaultRecordingFolderTest, followsTheUsersFolders) {
    userChose("$HOME/Filme");
    EXPECT_EQ(desktop::defaultRecordingFolder(), home + "/Filme/Vantoro");
    userChose("/data/films");
    EXPECT_EQ(desktop::defaultRecordingFolder(), "/data/films/Vantoro");
}

TEST_F(DefaultRecordingFolderTest, isBelowMoviesWithoutAVideoFolder) {
    userChose("$HOME/"); // how users disable such a folder
    EXPECT_EQ(desktop::defaultRecordingFolder(), home + "/Movies/Vantoro");
}

TEST_F(DefaultRecordingFolderTest, isTheDefaultIfNothingWasEverChosen) {
    EXPECT_EQ(desktop::defaultRecordingFolder(), home + "/Videos/Vantoro");
}

TEST_F(DefaultRecordingFolderTest, isNotCreated) {
    EXPECT_FALSE(std::filesystem::exists(desktop::defaultRecordingFolder()));
}

} // namespace
} // namespace vantoro::testing
