// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/failure.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(FailureTest, sentenceNamesTheArgument) {
    const Failure failure(FailureCode::microphoneUnknown, "usb % mic");
    EXPECT_STREQ(failure.what(), "The microphone \"usb % mic\" was not found.");
    EXPECT_EQ(failure.code(), FailureCode::microphoneUnknown);
    EXPECT_EQ(failure.argument(), "usb % mic");
}

TEST(FailureTest, everyCodeHasASentenceOfItsOwn) {
    std::string before;
    for (int code = 0; code <= static_cast<int>(FailureCode::programUpdated); ++code) {
        const Failure failure(static_cast<FailureCode>(code), "argument");
        EXPECT_STRNE(failure.what(), "") << code;
        EXPECT_NE(failure.what(), before) << code;
        before = failure.what();
    }
}

TEST(FailureTest, fileFailureNamesActionFileAndReason) {
    struct Case {
        FileAction action;
        const char* path;
        const char* beginning;
    };

    for (const auto& [action, path, beginning] : {
             Case{FileAction::createFolder, "/home/me/takes/", "Cannot create the folder takes: "},
             Case{FileAction::create, "a.m4a", "Cannot create a.m4a: "},
             Case{FileAction::createIn, "/home/me", "Cannot create a file in me: "},
             Case{FileAction::open, "/", "Cannot open /: "},
             Case{FileAction::find, "a", "Cannot find a: "},
             Case{FileAction::examine, "a", "Cannot examine a: "},
             Case{FileAction::lock, "a", "Cannot lock a: "},
             Case{FileAction::read, "a", "Cannot read a: "},
             Case{FileAction::write, "a", "Cannot write a: "},
             Case{FileAction::remove, "a", "Cannot remove a: "},
             Case{FileAction::list, "a", "Cannot list a: "},
             Case{FileAction::countFreeSpace, "a", "Cannot count the free space of a: "},
         }) {
        const FileFailure failure(action, path, ENOSPC);
        EXPECT_EQ(failure.what(), beginning + std::system_category().message(ENOSPC));
        EXPECT_EQ(failure.action(), action);
        EXPECT_EQ(failure.code(), std::errc::no_space_on_device);
    }
}

TEST(FailureTest, keptFailureIsReadWithoutThrowingOn) {
    EXPECT_EQ(whatOf(nullptr), "");
    EXPECT_EQ(whatOf(std::make_exception_ptr(std::runtime_error("broken"))), "broken");
    EXPECT_EQ(whatOf(std::make_exception_ptr(7)), "unknown failure");
}

} // namespace
} // namespace vantoro::testing
