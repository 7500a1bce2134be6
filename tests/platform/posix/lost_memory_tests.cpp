// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/lost_memory.h"

#include <csignal>
#include <cstddef>
#include <thread>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vantoro::posix {
namespace {

/// Two pages of shared memory, of which the second is missing.
class ShortMemory {
public:
    ShortMemory() : file_(::memfd_create("short", MFD_CLOEXEC)) {
        EXPECT_EQ(::ftruncate(file_, static_cast<off_t>(size_)), 0);
        void* const begin =
            ::mmap(nullptr, 2 * size_, PROT_READ | PROT_WRITE, MAP_SHARED, file_, 0);
        EXPECT_NE(begin, MAP_FAILED);
        begin_ = static_cast<volatile char*>(begin);
        begin_[0] = 1;
    }

    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;

    ~ShortMemory() {
        ::munmap(const_cast<char*>(begin_), 2 * size_);
        ::close(file_);
    }

    int first() const { return begin_[0]; }

    int missing() const { return begin_[size_ + 5]; }

private:
    std::size_t size_ = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    int file_;
    volatile char* begin_ = nullptr;
};

TEST(LostMemory, readsAsSilenceOnAThreadThatExpectsIt) {
    replaceLostMemory();
    const auto before = lostPages();
    std::jthread([] {
        expectLostMemoryHere();
        const ShortMemory memory;
        EXPECT_EQ(memory.missing(), 0);
        EXPECT_EQ(memory.missing(), 0);
        EXPECT_EQ(memory.first(), 1);
    }).join();
    EXPECT_EQ(lostPages(), before + 1);
}

TEST(LostMemoryDeathTest, endsTheProgramOnAnyOtherThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto read = [] {
        replaceLostMemory();
        const ShortMemory memory;
        ::_exit(memory.missing());
    };
    EXPECT_EXIT(
        read(), [](int status) { return !WIFEXITED(status) || WEXITSTATUS(status) != 0; }, "");
}

} // namespace
} // namespace vantoro::posix
