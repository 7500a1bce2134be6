// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/loaded_toolkit.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

#include "platform/ffmpeg/toolkit_module.h"
#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"

namespace vantoro {
namespace {

using ffmpeg::LoadedToolkit;

class LoadedToolkitTest : public ::testing::Test {
protected:
    posix::PosixFileSystem files;

    /// What is said when a toolkit from this file is used first.
    std::string complaintAbout(const std::filesystem::path& module) {
        LoadedToolkit toolkit(files, {}, module);
        try {
            toolkit.openRecording("/nowhere/a.mov");
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }
};

TEST_F(LoadedToolkitTest, worksAsTheToolkitDoes) {
    LoadedToolkit toolkit(files, {}, MODULE);
    const TemporaryFolder folder;
    const auto writer = toolkit.makeWriter(folder.path() / "movie.mov", {}, {});
    ASSERT_NE(writer, nullptr);
    EXPECT_NE(writer->addTrack({}), nullptr);
}

TEST_F(LoadedToolkitTest, passesOnWhyAFileCannotBeRead) {
    LoadedToolkit toolkit(files, {}, MODULE);
    EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::system_error);
}

TEST_F(LoadedToolkitTest, isLoadedOnceBySeveralThreads) {
    LoadedToolkit toolkit(files, {}, MODULE);
    const auto use = [&toolkit] {
        EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::system_error);
    };
    std::thread first(use);
    std::thread second(use);
    first.join();
    second.join();
}

TEST_F(LoadedToolkitTest, moduleThatIsNotThereIsNamed) {
    EXPECT_NE(complaintAbout("/nowhere/module.so").find("/nowhere/module.so"), std::string::npos);
}

TEST_F(LoadedToolkitTest, anotherLibraryIsNotTakenForIt) {
    EXPECT_NE(complaintAbout("libm.so.6").find(ffmpeg::toolkitModuleName), std::string::npos);
}

TEST_F(LoadedToolkitTest, moduleOfAnotherVersionIsNotUsed) {
    EXPECT_EQ(complaintAbout(OTHER_VERSIONS_MODULE),
              "The program was updated while it ran: quit it and start it again.");
}

TEST_F(LoadedToolkitTest, useAfterAFailureTriesAgain) {
    LoadedToolkit toolkit(files, {}, "/nowhere/module.so");
    EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::runtime_error);
    EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::runtime_error);
}

} // namespace
} // namespace vantoro
