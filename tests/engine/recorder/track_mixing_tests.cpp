// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/track_mixing.h"

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

class TrackMixingTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
    FakeMediaToolkit toolkit{log, fileSystem};
    const std::filesystem::path destination = "/recordings/Vantoro-2025-03-01-093015.m4a";
    const std::filesystem::path staging = "/recordings/Vantoro-2025-03-01-093015.exporting.m4a";

    std::filesystem::path location; ///< of the last mix
    std::stop_token stop;

    OutputPlace place() { return {fileSystem, "/recordings", "Vantoro-2025-03-01-093015"}; }

    void mix(std::size_t trackCount, bool hasSystemAudioTrack) {
        toolkit.exporting.trackCount = trackCount;
        const auto recording = toolkit.openRecording("/recordings/x.partial.mov");
        location = mixTracks(*recording, place(),
                             recordingVolumes(hasSystemAudioTrack, 0.9F, 0.25F), {}, stop)
                       .location;
    }

    std::string failureOf(std::size_t trackCount = 2) {
        try {
            mix(trackCount, true);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "none";
    }

    static std::exception_ptr platformError() {
        return std::make_exception_ptr(std::runtime_error("the platform's own"));
    }
};

TEST_F(TrackMixingTest, bothSourcesTakeTheirVolumesInTrackOrder) {
    mix(2, true);
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 0.25F}));
}

TEST_F(TrackMixingTest, microphoneAloneTakesTheMicrophoneVolume) {
    mix(1, false);
    EXPECT_EQ(toolkit.exportedGains, std::vector<float>{0.25F});
}

TEST_F(TrackMixingTest, systemAudioAloneTakesTheSystemVolume) {
    mix(1, true);
    EXPECT_EQ(toolkit.exportedGains, std::vector<float>{0.9F});
}

TEST_F(TrackMixingTest, everyTrackAfterTheFirstTakesTheMicrophoneVolume) {
    mix(4, true);
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 0.25F, 0.25F, 0.25F}));
}

TEST_F(TrackMixingTest, volumesAreNotClamped) {
    toolkit.exporting.trackCount = 2;
    const auto recording = toolkit.openRecording("/recordings/x.partial.mov");
    mixTracks(*recording, place(), recordingVolumes(true, 12.5F, 0), {}, {});
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{12.5F, 0}));
}

TEST_F(TrackMixingTest, fileWithoutAudioTracksFailsAndMakesNoFile) {
    EXPECT_EQ(failureOf(0), "noAudioCaptured");
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(TrackMixingTest, errorsOfThePlatformAreThrownUnchanged) {
    toolkit.exporting.exportError = platformError();
    EXPECT_EQ(failureOf(), "the platform's own");
    EXPECT_TRUE(fileSystem.paths().empty()) << "no staging file is left";
}

TEST_F(TrackMixingTest, exportGoesThroughAStagingFileThatTakesItsNameAndIsSyncedAtTheEnd) {
    mix(2, true);
    const auto calls = log.calls();
    const std::vector<std::string> end(calls.end() - 3, calls.end());
    EXPECT_EQ(end, (std::vector<std::string>{
                       "write Vantoro-2025-03-01-093015.exporting.m4a",
                       "move Vantoro-2025-03-01-093015.exporting.m4a Vantoro-2025-03-01-093015.m4a",
                       "syncFolder /recordings"}));
    EXPECT_EQ(fileSystem.paths(), std::set<std::filesystem::path>{destination});
}

TEST_F(TrackMixingTest, mixMadeAheadTakesTheNameAndNoStagingFileStays) {
    toolkit.exporting.isMadeAhead = true;
    mix(2, true);
    EXPECT_TRUE(log.contains("name Vantoro-2025-03-01-093015.m4a"));
    EXPECT_EQ(fileSystem.paths(), std::set<std::filesystem::path>{destination});
}

TEST_F(TrackMixingTest, requestedStopEndsTheExportAndLeavesNothing) {
    std::stop_source source;
    stop = source.get_token();
    toolkit.exporting.duringExport = [&] { source.request_stop(); };
    EXPECT_THROW(mix(2, true), std::system_error);
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(TrackMixingTest, fileThatAppearedAtTheDestinationStaysAndTheNextNameIsTaken) {
    toolkit.exporting.duringExport = [this] { fileSystem.put(destination); };
    mix(2, true);
    EXPECT_EQ(location, "/recordings/Vantoro-2025-03-01-093015-2.m4a");
    EXPECT_EQ(fileSystem.paths(), (std::set{destination, location}));
}

TEST_F(TrackMixingTest, failureRemovesNoFilesOfOthers) {
    toolkit.exporting.duringExport = [this] { fileSystem.put(destination); };
    toolkit.exporting.exportError = platformError();
    EXPECT_EQ(failureOf(), "the platform's own");
    EXPECT_EQ(fileSystem.paths(), std::set{destination});
}

TEST_F(TrackMixingTest, failedMoveFailsWithThatErrorAndLeavesNoStagingFile) {
    fileSystem.moveError = platformError();
    EXPECT_EQ(failureOf(), "the platform's own");
    EXPECT_TRUE(fileSystem.paths().empty());
}

TEST_F(TrackMixingTest, folderThatCannotBeSyncedFailsTheExport) {
    fileSystem.syncFolderError = platformError();
    EXPECT_EQ(failureOf(), "the platform's own");
    EXPECT_TRUE(fileSystem.paths().empty()) << "neither file may stay beside the recording";
}

TEST_F(TrackMixingTest, progressReachesItsReceiver) {
    toolkit.exporting.trackCount = 1;
    const auto recording = toolkit.openRecording("/recordings/x.partial.mov");
    double reported = 0;
    mixTracks(*recording, place(), recordingVolumes(true, 1, 1),
              [&](double fraction) { reported = fraction; }, {});
    EXPECT_EQ(reported, 1);
}

} // namespace
} // namespace vantoro::testing
