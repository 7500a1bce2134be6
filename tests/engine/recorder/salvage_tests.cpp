// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/salvage.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using Files = std::vector<std::filesystem::path>;

std::optional<std::filesystem::file_time_type> daysAgo(int days) {
    return std::filesystem::file_time_type(std::chrono::days(20000 - days));
}

class SalvageTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
    FakeMediaToolkit toolkit{log, fileSystem};
    FakeClock clock;
    std::stop_source stop;
    std::optional<TrackNames> trackNames;
    const Files finalFiles = {"/r/Vantoro-2025-03-01-093015.m4a",
                              "/r/Vantoro-2025-03-01-093015-2.m4a"};

    SalvageTest() { toolkit.exporting.trackCount = 2; }

    void put(const std::string& name, std::optional<std::filesystem::file_time_type> modified) {
        fileSystem.put("/r/" + name, {}, modified);
    }

    SalvageResult salvage() {
        return recoverIncompleteRecordings({toolkit, fileSystem, clock}, "/r", trackNames,
                                           stop.get_token(), {});
    }

    Files recover() { return salvage().recordings; }

    bool isThere(const std::string& name) const { return fileSystem.exists("/r/" + name); }

    std::size_t waiting() { return recordingsToRecover(toolkit, fileSystem, "/r"); }

    /// Expects no new file and no missing one.
    void expectUntouched() {
        const auto before = fileSystem.paths();
        EXPECT_EQ(recover(), Files());
        EXPECT_EQ(fileSystem.paths(), before);
    }
};

TEST(IncompleteRecording, isRecognizedByItsTwoExtensions) {
    for (const char* name :
         {"a.partial.mov", "b.partial.MOV", "b.partial.Mov", ".partial.partial.mov",
          ".Vantoro-0F6B1C2E-7D4A-4B8E-9C1D-2A3B4C5D6E7F.partial.mov"}) {
        EXPECT_TRUE(isIncompleteRecording(std::filesystem::path("/r") / name)) << name;
    }
    for (const char* name :
         {"c.PARTIAL.mov", "d.mov", "e.partial.m4a", "partial.mov", ".partial.mov", "f.partial",
          "g.partial.mov.txt", "h.partially.mov", "i.partial.", ""}) {
        EXPECT_FALSE(isIncompleteRecording(std::filesystem::path("/r") / name)) << name;
    }
}

TEST(IncompleteRecording, oldestComesFirstAndUnknownBeforeAll) {
    EXPECT_EQ(incompleteRecordings({{"b.partial.mov", daysAgo(1)},
                                    {"x.m4a", daysAgo(9)},
                                    {"a.partial.mov", daysAgo(2)},
                                    {"z.partial.mov", std::nullopt},
                                    {"d.partial.mov", daysAgo(3)}}),
              (Files{"z.partial.mov", "d.partial.mov", "a.partial.mov", "b.partial.mov"}));
}

TEST(IncompleteRecording, sameDatesKeepTheirOrder) {
    EXPECT_EQ(incompleteRecordings({{"c.partial.mov", daysAgo(1)},
                                    {"a.partial.mov", daysAgo(1)},
                                    {"b.partial.mov", daysAgo(1)},
                                    {"z.partial.mov", std::nullopt},
                                    {"y.partial.mov", std::nullopt}}),
              (Files{"z.partial.mov", "y.partial.mov", "c.partial.mov", "a.partial.mov",
                     "b.partial.mov"}));
}

TEST_F(SalvageTest, progressIsThatOfAllFiles) {
    for (const char* name : {"a.partial.mov", "b.partial.mov", "c.partial.mov", "d.partial.mov"}) {
        put(name, daysAgo(1));
    }
    std::vector<double> told;
    recoverIncompleteRecordings({toolkit, fileSystem, clock}, "/r", std::nullopt, {},
                                [&](double fraction) {
                                    told.push_back(fraction);
                                    clock.uptime += 1; // each export takes that long
                                });
    EXPECT_EQ(told, (std::vector{0.25, 0.5, 0.75, 1.0}));
}

TEST_F(SalvageTest, finishesTheOldestFirstAndDeletesTheOriginals) {
    put("b.partial.MOV", daysAgo(0));
    put("a.partial.mov", daysAgo(1));
    EXPECT_EQ(recover(), finalFiles);
    EXPECT_EQ(fileSystem.paths(), std::set(finalFiles.begin(), finalFiles.end()));
    EXPECT_EQ(log.startingWith("openRecording"),
              (std::vector<std::string>{"openRecording /r/a.partial.mov",
                                        "openRecording /r/b.partial.MOV"}));
}

TEST_F(SalvageTest, everyTrackKeepsItsVolume) {
    put("a.partial.mov", daysAgo(1));
    recover();
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{1, 1}));
}

TEST_F(SalvageTest, deletesOnlyWhenTheFinalFilesNameIsOnTheDisk) {
    put("a.partial.mov", daysAgo(1));
    recover();
    const auto calls = log.calls();
    const auto synced = std::ranges::find(calls, "syncFolder /r");
    const auto removed = std::ranges::find(calls, "remove a.partial.mov");
    ASSERT_NE(removed, calls.end());
    EXPECT_LT(synced, removed);
}

TEST_F(SalvageTest, ignoresFilesOfOtherNames) {
    for (const char* name : {"c.PARTIAL.mov", "d.mov", "e.partial.m4a"}) {
        put(name, daysAgo(1));
    }
    expectUntouched();
    EXPECT_TRUE(log.startingWith("openRecording").empty());
}

TEST_F(SalvageTest, folderThatCannotBeListedYieldsNothing) {
    put("a.partial.mov", daysAgo(1));
    fileSystem.listError = std::make_exception_ptr(std::runtime_error("no"));
    expectUntouched();
}

TEST_F(SalvageTest, fileThatCannotBeReadStays) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.openError = std::make_exception_ptr(std::runtime_error("no"));
    expectUntouched();
}

TEST_F(SalvageTest, fileWithoutAPositiveDurationStays) {
    put("a.partial.mov", daysAgo(1));
    for (const MediaTime duration : {MediaTime{}, MediaTime{0, 48000}, MediaTime{-1, 48000}}) {
        toolkit.exporting.duration = duration;
        expectUntouched();
    }
    EXPECT_TRUE(log.startingWith("write").empty());
}

TEST_F(SalvageTest, fileWithoutATrackStaysAndNoFinalFileRemains) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.trackCount = 0;
    expectUntouched();
}

TEST_F(SalvageTest, failedExportKeepsOnlyTheOriginalAndTheOthersGoOn) {
    put("a.partial.mov", daysAgo(2));
    put("b.partial.mov", daysAgo(1));
    toolkit.exporting.duringExport = [this] {
        const bool first = log.startingWith("write").size() == 1;
        toolkit.exporting.exportError =
            first ? std::make_exception_ptr(std::runtime_error("no")) : nullptr;
    };
    EXPECT_EQ(recover(), Files{finalFiles[0]});
    EXPECT_TRUE(isThere("a.partial.mov"));
    EXPECT_FALSE(isThere("b.partial.mov"));
    EXPECT_EQ(fileSystem.paths().size(), 2U);
}

TEST_F(SalvageTest, fileThatCannotBeDeletedIsNotFinishedEither) {
    put("a.partial.mov", daysAgo(1));
    fileSystem.removeErrors["/r/a.partial.mov"] = std::make_exception_ptr(std::runtime_error("no"));
    expectUntouched();
    EXPECT_TRUE(log.contains("write Vantoro-2025-03-01-093015.exporting.m4a"));
}

TEST_F(SalvageTest, reportsWhatCouldNotBeSavedAndWhy) {
    put("a.partial.mov", daysAgo(2));
    put("b.partial.mov", daysAgo(1));
    fileSystem.removeErrors["/r/a.partial.mov"] = std::make_exception_ptr(std::runtime_error("no"));
    const auto result = salvage();
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(result.failures.front().location, "/r/a.partial.mov");
    EXPECT_EQ(result.recordings.size(), 1U);
}

TEST_F(SalvageTest, reportsDiskErrorsOfAFileOrTheFolder) {
    const auto failing = [](std::errc reason) {
        return std::make_exception_ptr(std::system_error(std::make_error_code(reason)));
    };
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.openError = failing(std::errc::io_error);
    EXPECT_EQ(salvage().failures.size(), 1U);
    fileSystem.listError = failing(std::errc::io_error);
    const auto failures = salvage().failures;
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures.front().location, "/r");
}

TEST_F(SalvageTest, missingOrAlreadySavedFileIsNoFailure) {
    const auto gone = std::make_exception_ptr(
        std::system_error(std::make_error_code(std::errc::no_such_file_or_directory)));
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.openError = gone;
    EXPECT_TRUE(salvage().failures.empty());
    toolkit.exporting.openError = std::make_exception_ptr(std::runtime_error("no movie"));
    EXPECT_TRUE(salvage().failures.empty());
    fileSystem.listError = gone;
    EXPECT_TRUE(salvage().failures.empty());
}

TEST_F(SalvageTest, stopIsNoFailure) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.duringExport = [this] { stop.request_stop(); };
    EXPECT_TRUE(salvage().failures.empty());
}

TEST_F(SalvageTest, lockedFileStays) {
    put("a.partial.mov", daysAgo(1));
    fileSystem.locked.insert("/r/a.partial.mov");
    expectUntouched();
    EXPECT_TRUE(log.startingWith("openRecording").empty());
}

TEST_F(SalvageTest, fileIsLockedFromItsReadingToItsDeletion) {
    put("a.partial.mov", daysAgo(1));
    recover();
    const auto calls = log.calls();
    EXPECT_EQ(calls.front(), "lock a.partial.mov");
    EXPECT_EQ(calls.back(), "unlock a.partial.mov");
    EXPECT_EQ(*(calls.end() - 2), "remove a.partial.mov");
}

TEST_F(SalvageTest, originalThatIsNotWholeIsSetAsideAndNotSalvagedAgain) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.isWhole = false;
    const std::filesystem::path kept = "/r/Vantoro-2025-03-01-093015.incomplete.mov";
    EXPECT_EQ(salvage(), (SalvageResult{{finalFiles[0]}, {kept}, {}}));
    EXPECT_EQ(fileSystem.paths(), (std::set{finalFiles[0], kept}));
    EXPECT_FALSE(log.contains("remove a.partial.mov"));
    EXPECT_TRUE(incompleteRecordings({{kept, daysAgo(1)}}).empty());
}

TEST_F(SalvageTest, wholeOriginalIsNotKept) {
    put("a.partial.mov", daysAgo(1));
    EXPECT_EQ(salvage(), (SalvageResult{{finalFiles[0]}, {}, {}}));
}

TEST_F(SalvageTest, originalIsSetAsideOnlyWhenTheFinalFilesNameIsOnTheDisk) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.isWhole = false;
    recover();
    const auto calls = log.calls();
    const auto synced = std::ranges::find(calls, "syncFolder /r");
    const auto moved =
        std::ranges::find(calls, "move a.partial.mov Vantoro-2025-03-01-093015.incomplete.mov");
    ASSERT_NE(moved, calls.end());
    EXPECT_LT(synced, moved);
    EXPECT_EQ(calls.back(), "unlock a.partial.mov");
}

TEST_F(SalvageTest, keepsTheTracksThatAreNamed) {
    put("a.partial.mov", daysAgo(1));
    trackNames = {"system audio", "microphone"};
    EXPECT_EQ(salvage(), (SalvageResult{{finalFiles[0]}, {}, {}}));
    EXPECT_EQ(fileSystem.paths(),
              (std::set<std::filesystem::path>{finalFiles[0],
                                               "/r/Vantoro-2025-03-01-093015 (system audio).m4a",
                                               "/r/Vantoro-2025-03-01-093015 (microphone).m4a"}));
}

TEST_F(SalvageTest, originalIsSetAsideIfItsTracksCannotBeKept) {
    put("a.partial.mov", daysAgo(1));
    trackNames = {"system audio", "microphone"};
    toolkit.exporting.failingTrack = 1;
    const std::filesystem::path kept = "/r/Vantoro-2025-03-01-093015.incomplete.mov";
    const auto result = salvage();
    EXPECT_EQ(result.recordings, Files{finalFiles[0]});
    EXPECT_EQ(result.keptOriginals, Files());
    ASSERT_EQ(result.tracksNotKept.size(), 1U);
    EXPECT_EQ(result.tracksNotKept[0].original, kept);
    EXPECT_EQ(fileSystem.paths(), (std::set{finalFiles[0], kept}));
}

TEST_F(SalvageTest, stopDuringATracksCopyRemovesAllFilesAndKeepsTheRecording) {
    put("a.partial.mov", daysAgo(1));
    trackNames = {"system audio", "microphone"};
    for (const std::size_t until : {1U, 2U}) { // in the first track's copy, and in the second's
        stop = std::stop_source();
        toolkit.copiedTracks.clear();
        toolkit.exporting.duringCopy = [this, until] {
            if (toolkit.copiedTracks.size() == until) {
                stop.request_stop();
            }
        };
        expectUntouched();
        EXPECT_EQ(toolkit.copiedTracks.size(), until);
    }
}

TEST_F(SalvageTest, stopBeforeTheFirstTouchesNothing) {
    put("a.partial.mov", daysAgo(1));
    stop.request_stop();
    expectUntouched();
    EXPECT_TRUE(log.calls().empty());
}

TEST_F(SalvageTest, stopBetweenTwoReturnsTheFirstAlone) {
    put("a.partial.mov", daysAgo(2));
    put("b.partial.mov", daysAgo(1));
    fileSystem.afterRemove = [this](const std::filesystem::path& path) {
        if (path.filename() == "a.partial.mov") {
            stop.request_stop();
        }
    };
    EXPECT_EQ(recover(), Files{finalFiles[0]});
    EXPECT_TRUE(isThere("b.partial.mov"));
    EXPECT_EQ(fileSystem.paths().size(), 2U);
}

TEST_F(SalvageTest, stopDuringAnExportRemovesItsFileAndKeepsTheRecording) {
    put("a.partial.mov", daysAgo(2));
    put("b.partial.mov", daysAgo(1));
    toolkit.exporting.duringExport = [this] { stop.request_stop(); };
    expectUntouched();
    EXPECT_EQ(log.startingWith("write").size(), 1U);
}

TEST_F(SalvageTest, unfinishedRecordingsAreCountedAndLeftAlone) {
    EXPECT_EQ(waiting(), 0U);
    put("a.partial.mov", daysAgo(2));
    put("b.partial.MOV", daysAgo(1));
    put("c.mov", daysAgo(1));
    const auto before = fileSystem.paths();
    EXPECT_EQ(waiting(), 2U);
    EXPECT_EQ(fileSystem.paths(), before);
}

TEST_F(SalvageTest, recordingInUseIsNotCounted) {
    put("a.partial.mov", daysAgo(1));
    fileSystem.locked.insert("/r/a.partial.mov");
    EXPECT_EQ(waiting(), 0U);
    EXPECT_TRUE(log.startingWith("openRecording").empty());
}

TEST_F(SalvageTest, unrecoverableFileIsNotCounted) {
    put("a.partial.mov", daysAgo(1));
    toolkit.exporting.duration = zeroTime;
    EXPECT_EQ(waiting(), 0U);
    toolkit.exporting.openError = std::make_exception_ptr(std::runtime_error("no"));
    EXPECT_EQ(waiting(), 0U);
    fileSystem.listError = std::make_exception_ptr(std::runtime_error("no"));
    EXPECT_EQ(waiting(), 0U);
}

} // namespace
} // namespace vantoro::testing
