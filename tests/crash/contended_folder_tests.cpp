// SPDX-License-Identifier: GPL-3.0-or-later

#include <barrier>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "engine/files/output_place.h"
#include "platform/posix/posix_file_system.h"
#include "tests/platform/posix/disk.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

// Locks belong to the open file, so threads contend as processes do.

TEST(ContendedFolder, recordersThatSaveSimultaneouslyAllKeepTheirFiles) {
    constexpr int savers = 8;
    constexpr int rounds = 50;
    const TemporaryFolder folder;
    posix::PosixFileSystem fileSystem;
    std::barrier atOnce(savers);
    std::mutex mutex;
    std::map<std::filesystem::path, std::string> saved;
    {
        std::vector<std::jthread> threads;
        for (int saver = 0; saver < savers; ++saver) {
            threads.emplace_back([&, saver] {
                for (int round = 0; round < rounds; ++round) {
                    const std::string sound =
                        std::to_string(saver) + " in round " + std::to_string(round);
                    atOnce.arrive_and_wait();
                    OutputPlace place(fileSystem, folder.path(), "now");
                    place.stagingFile().writeAt(0, bytesOf(sound));
                    place.stagingFile().sync();
                    place.stagingFile().close();
                    const auto final = place.publish(nullptr);
                    const std::scoped_lock lock(mutex);
                    EXPECT_TRUE(saved.emplace(final.location, sound).second) << final.location;
                }
            });
        }
    }
    EXPECT_EQ(saved.size(), std::size_t{savers} * rounds);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(contentOf(entry.path()), saved[entry.path()]) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, saved.size());
}

} // namespace

} // namespace vantoro::testing
