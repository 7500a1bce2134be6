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
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using ffmpeg::LoadedToolkit;

class LoadedToolkitTest : public ::testing::Test {
protected:
    posix::PosixFileSystem files;

    /// The error on first use of a toolkit from this file.
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

TEST_F(LoadedToolkitTest, passesOnReadErrors) {
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

TEST_F(LoadedToolkitTest, errorNamesTheMissingModule) {
    EXPECT_NE(complaintAbout("/nowhere/module.so").find("/nowhere/module.so"), std::string::npos);
}

TEST_F(LoadedToolkitTest, anotherLibraryIsRefused) {
    EXPECT_NE(complaintAbout("libm.so.6").find(ffmpeg::toolkitModuleName), std::string::npos);
}

TEST_F(LoadedToolkitTest, moduleOfAnotherVersionIsRefused) {
    EXPECT_EQ(complaintAbout(OTHER_VERSIONS_MODULE),
              "The program was updated while it ran: quit it and start it again.");
}

TEST_F(LoadedToolkitTest, nextUseAfterAFailureRetries) {
    LoadedToolkit toolkit(files, {}, "/nowhere/module.so");
    EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::runtime_error);
    EXPECT_THROW(toolkit.openRecording("/nowhere/a.mov"), std::runtime_error);
}

} // namespace
} // namespace vantoro::testing
