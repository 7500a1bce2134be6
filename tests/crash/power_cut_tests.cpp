// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "engine/recorder/salvage.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/system_clock.h"
#include "tests/crash/support/journaling_disk.h"
#include "tests/crash/support/recorder_on_disk.h"
#include "tests/media/support/external_programs.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

const std::filesystem::path recordings = "/r";
constexpr std::int64_t second = 48000;

std::vector<std::filesystem::path> salvage(JournalingDisk& disk) {
    ffmpeg::FfmpegToolkit toolkit(disk);
    const posix::SystemClock clock;
    return recoverIncompleteRecordings({toolkit, disk, clock}, recordings, {}, {}, {}).recordings;
}

/// Cuts the power after each operation of a run, with each possible outcome.
class PowerCut : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::mt19937 random{20'260};
    std::size_t states = 0;

    /// Frames in the longest file that a user can play.
    std::int64_t framesInFinalFiles(const DiskContent& content) {
        std::int64_t best = 0;
        for (const auto& [path, bytes] : content) {
            if (path.extension() == ".m4a" && path.stem().extension() != ".exporting") {
                best = std::max(best, framesOf(folder.put("final.m4a", bytes), 0));
            }
        }
        return best;
    }

    /// Frames in the whole fragments of unfinished recordings.
    static std::int64_t framesInRecordings(const DiskContent& content) {
        JournalingDisk disk(content);
        ffmpeg::FfmpegToolkit toolkit(disk);
        std::int64_t best = 0;
        for (const auto& [path, bytes] : content) {
            if (isIncompleteRecording(path) && !bytes.empty()) {
                const auto duration = toolkit.openRecording(path)->duration();
                best = std::max(best, duration.isValid() ? duration.inUnitsOf(48000) : 0);
            }
        }
        return best;
    }

    /// Salvages what is left, and expects that all synced sound can be played.
    void expectNothingLost(const DiskContent& left, std::int64_t safe, const std::string& when) {
        ++states;
        JournalingDisk disk(left);
        salvage(disk);
        EXPECT_GE(framesInFinalFiles(disk.content()), safe) << when;
    }

    void cutEverywhere(const DiskContent& before, const DiskJournal& journal) {
        std::int64_t safe = 0;
        std::set<DiskContent> seen;
        for (std::size_t operations = 0; operations <= journal.size(); ++operations) {
            const auto certain = certainContent(before, journal, operations);
            // Synced sound stays synced, though its name may change.
            safe = std::max({safe, framesInRecordings(certain), framesInFinalFiles(certain)});
            for (const auto unsynced :
                 {UnsyncedContent::lost, UnsyncedContent::kept, UnsyncedContent::torn,
                  UnsyncedContent::torn, UnsyncedContent::torn, UnsyncedContent::torn}) {
                for (const auto& left :
                     possibleContents(before, journal, operations, unsynced, random)) {
                    if (seen.insert(left).second) {
                        expectNothingLost(left, safe,
                                          "after " + std::to_string(operations) + " operations");
                    }
                }
            }
        }
    }
};

TEST_F(PowerCut, recordingAndItsStopLoseNothingThatWasSafe) {
    JournalingDisk disk;
    RecorderOnDisk recorder(disk, recordings);
    recorder.start();
    recorder.hearUntil(12 * second);
    recorder.stop();
    ASSERT_EQ(disk.content().size(), 1U);
    EXPECT_EQ(framesInFinalFiles(disk.content()), 12 * second);
    cutEverywhere({}, disk.journal());
    EXPECT_GT(states, 20U);
}

TEST_F(PowerCut, recordingWhoseMixFollowsItLosesNothingThatWasSafe) {
    JournalingDisk disk;
    RecorderOnDisk recorder(disk, recordings);
    recorder.expectVolumes();
    recorder.start();
    recorder.hearUntil(12 * second);
    ASSERT_TRUE(disk.waitForUnnamedFile());
    recorder.stop();
    const auto journal = disk.journal();
    EXPECT_EQ(std::ranges::count(journal, DiskOperation::Kind::name, &DiskOperation::kind), 1);
    EXPECT_EQ(framesInFinalFiles(disk.content()), 12 * second);
    cutEverywhere({}, journal);
    EXPECT_GT(states, 10U);
}

TEST_F(PowerCut, salvageLosesNothingThatWasSafe) {
    DiskContent unfinished;
    {
        JournalingDisk disk;
        RecorderOnDisk recorder(disk, recordings);
        recorder.start();
        recorder.hearUntil(12 * second);
        recorder.stop();
        // On its disk, it died after its second fragment.
        const auto journal = disk.journal();
        std::size_t operations = 0;
        for (int syncs = 0; syncs < 2; ++operations) {
            syncs += journal.at(operations).kind == DiskOperation::Kind::syncFile ? 1 : 0;
        }
        unfinished = certainContent({}, journal, operations);
    }
    ASSERT_EQ(unfinished.size(), 1U);
    JournalingDisk disk(unfinished);
    ASSERT_EQ(salvage(disk).size(), 1U);
    EXPECT_GT(framesInFinalFiles(disk.content()), 10 * second);
    cutEverywhere(unfinished, disk.journal());
    EXPECT_GT(states, 8U);
}

} // namespace

} // namespace vantoro::testing
