// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/recorder/salvage.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "tests/crash/support/recorder_on_disk.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/platform/posix/disk.h"
#include "tests/support/fake_clock.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

using ::testing::UnorderedElementsAre;

constexpr std::int64_t second = 48000;
const char* const finalName = "Vantoro-2025-03-01-093015.m4a";

void put(const std::filesystem::path& path, const std::vector<std::byte>& content) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
    ASSERT_TRUE(file.good());
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

class FailingDisk : public ::testing::Test {
protected:
    posix::PosixFileSystem fileSystem;
    ffmpeg::FfmpegToolkit toolkit{fileSystem};
    FakeClock clock;
    const std::vector<std::byte> movie = recordMovie(12 * second, tone(440, 0.3F));

    std::vector<std::filesystem::path> salvage(const std::filesystem::path& folder,
                                               const ExportProgress& progress = {}) {
        return recoverIncompleteRecordings({toolkit, fileSystem, clock}, folder, {}, {}, progress)
            .recordings;
    }
};

TEST_F(FailingDisk, salvageOnAFullDiskKeepsTheRecordingUntilThereIsRoom) {
    SmallDisk disk(2U << 20U);
    put(disk.path() / "a.partial.mov", movie);
    disk.fill();
    const auto before = namesIn(disk.path());
    EXPECT_TRUE(salvage(disk.path()).empty());
    EXPECT_THAT(namesIn(disk.path()), ::testing::UnorderedElementsAreArray(before));
    disk.empty();
    EXPECT_EQ(salvage(disk.path()).size(), 1U);
}

TEST_F(FailingDisk, emptyFileOfAKilledStartStaysAndDoesNoHarm) {
    const TemporaryFolder folder;
    put(folder.path() / "a.partial.mov", {});
    put(folder.path() / "b.partial.mov", movie);
    EXPECT_EQ(recordingsToRecover(toolkit, fileSystem, folder.path()), 1U);
    EXPECT_EQ(salvage(folder.path()).size(), 1U);
    EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("a.partial.mov", finalName));
}

TEST_F(FailingDisk, folderWithTheFinalNameDuringSalvageStaysAndTheNextNameIsUsed) {
    const TemporaryFolder folder;
    put(folder.path() / "a.partial.mov", movie);
    const auto taken = folder.path() / finalName;
    const auto appear = [&](double) { std::filesystem::create_directories(taken / "somebody's"); };
    const auto saved = salvage(folder.path(), appear);
    EXPECT_TRUE(std::filesystem::exists(taken / "somebody's"));
    ASSERT_EQ(saved.size(), 1U);
    EXPECT_EQ(saved[0].filename(), "Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(framesOf(saved[0], 0), 12 * second);
}

TEST_F(FailingDisk, folderWithTheFinalNameDuringSavingStaysAndTheNextNameIsUsed) {
    const TemporaryFolder folder;
    RecorderOnDisk recorder(fileSystem, folder.path());
    recorder.start();
    recorder.hearUntil(3 * second);
    std::filesystem::path taken;
    recorder.whileExporting([&] {
        // Under the name planned for the final file.
        for (const std::string& name : namesIn(folder.path())) {
            if (const auto end = name.find(".exporting"); end != std::string::npos) {
                taken = folder.path() / (name.substr(0, end) + ".m4a");
                std::filesystem::create_directories(taken / "somebody's");
            }
        }
    });
    const auto saved = recorder.stop();
    EXPECT_TRUE(std::filesystem::exists(taken / "somebody's"));
    EXPECT_EQ(saved, folder.path() / (taken.stem().string() + "-2.m4a"));
    EXPECT_EQ(namesIn(folder.path()).size(), 2U);
    EXPECT_EQ(framesOf(saved, 0), 3 * second);
}

TEST_F(FailingDisk, runningRecordingInTheSameProcessIsNotSalvaged) {
    const TemporaryFolder folder;
    RecorderOnDisk recorder(fileSystem, folder.path());
    recorder.start();
    recorder.hearUntil(3 * second);
    bool untouched = false;
    recorder.whileExporting([&] { untouched = salvage(folder.path()).empty(); });
    EXPECT_TRUE(salvage(folder.path()).empty());
    EXPECT_EQ(framesOf(recorder.stop(), 0), 3 * second);
    EXPECT_TRUE(untouched);
    EXPECT_EQ(namesIn(folder.path()).size(), 1U);
}

} // namespace

} // namespace vantoro::testing
