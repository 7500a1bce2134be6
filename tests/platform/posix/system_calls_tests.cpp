// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/system_calls.h"

#include <system_error>
#include <utility>

#include <gtest/gtest.h>

#include "tests/platform/posix/disk.h"

namespace vantoro::testing {
namespace {

TEST(SystemCallTest, isRepeatedForAsLongAsSignalsInterruptIt) {
    int calls = 0;
    const int result = posix::uninterrupted([&] {
        errno = EINTR;
        return ++calls < 4 ? -1 : 17;
    });
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(result, 17);
}

TEST(SystemCallTest, isNotRepeatedAfterAnotherFailure) {
    int calls = 0;
    EXPECT_EQ(posix::uninterrupted([&] {
                  ++calls;
                  errno = ENOSPC;
                  return -1;
              }),
              -1);
    EXPECT_EQ(calls, 1);
}

TEST(SystemCallTest, failureNamesTheLastPartOfThePath) {
    struct Case {
        const char* path;
        const char* text;
    };

    for (const auto& [path, text] :
         {Case{"/home/user/take.m4a", "Cannot write take.m4a: "},
          Case{"/home/user/takes/", "Cannot write takes: "}, Case{"/", "Cannot write /: "}}) {
        expectFailure([&] { throw FileFailure(FileAction::write, path, ENOSPC); },
                      text + reason(ENOSPC));
    }
}

TEST(SystemCallTest, failureCarriesTheSystemsErrorNumber) {
    try {
        throw FileFailure(FileAction::write, "take.m4a", ENOSPC);
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
}

TEST(SystemCallTest, writingToADeviceThatIsAlwaysFullFails) {
    const auto device = posix::openFile("/dev/full", O_WRONLY, FileAction::open);
    expectFailure([&] { posix::writeFully(device, 0, bytesOf("x"), "/dev/full"); },
                  "Cannot write full: " + reason(ENOSPC));
}

bool isOpen(int number) {
    return ::fcntl(number, F_GETFD) != -1;
}

TEST(FileDescriptorTest, isClosedOnceByItsLastOwner) {
    int moved = -1;
    {
        posix::FileDescriptor owner = posix::openFile("/dev/null", O_WRONLY, FileAction::open);
        const int replaced = owner.get();
        {
            auto other = posix::openFile("/dev/null", O_WRONLY, FileAction::open);
            moved = other.get();
            owner = std::move(other);
        }
        EXPECT_EQ(owner.get(), moved);
        EXPECT_FALSE(isOpen(replaced));
        EXPECT_TRUE(isOpen(moved));
    }
    EXPECT_FALSE(isOpen(moved));
}

} // namespace
} // namespace vantoro::testing
