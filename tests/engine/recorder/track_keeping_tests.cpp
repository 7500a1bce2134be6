// SPDX-License-Identifier: GPL-3.0-or-later

#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using Paths = std::set<std::filesystem::path>;

/// A recorder that is to keep the sources' own files.
class TrackKeeping : public RecorderTest {
protected:
    const TrackNames names{.systemAudio = "system audio", .microphone = "microphone"};
    const std::string stem = "/recordings/Vantoro-2025-03-01-093015";
    std::vector<TracksNotKept> failures;

    TrackKeeping() {
        recorder.onTracksNotKept = [this](const TracksNotKept& failure) {
            failures.push_back(failure);
        };
    }

    std::filesystem::path record(RecordingOptions options) {
        options.trackNames = names;
        recorder.start(options);
        if (options.captureSystemAudio) {
            capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
        }
        if (options.captureMicrophone) {
            capture.deliver(bufferAt(0, 1), AudioLevelSource::microphone);
        }
        return recorder.stop(1, 1);
    }
};

TEST_F(TrackKeeping, givesEachSourceAFileBesideTheMix) {
    EXPECT_EQ(record(bothSources()), finalFile);
    EXPECT_EQ(fileSystem.paths(),
              (Paths{finalFile, stem + " (system audio).m4a", stem + " (microphone).m4a"}));
    EXPECT_EQ(toolkit.copiedTracks,
              (decltype(toolkit.copiedTracks){{0, "Vantoro-2025-03-01-093015 (system audio)"},
                                              {1, "Vantoro-2025-03-01-093015 (microphone)"}}));
    EXPECT_EQ(failures, std::vector<TracksNotKept>());
}

TEST_F(TrackKeeping, namesASingleTrackByItsSource) {
    record(microphoneOnly());
    EXPECT_EQ(fileSystem.paths(), (Paths{finalFile, stem + " (microphone).m4a"}));
}

TEST_F(TrackKeeping, isNotDoneUnlessAskedFor) {
    record(bothSources());
    const auto paths = fileSystem.paths();
    recorder.start(bothSources());
    capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
    recorder.stop(1, 1);
    EXPECT_EQ(fileSystem.paths().size(), paths.size() + 1);
}

TEST_F(TrackKeeping, replacesNothing) {
    fileSystem.put(finalFile);
    fileSystem.put(stem + "-2 (microphone).m4a");
    EXPECT_EQ(record(bothSources()), stem + "-2.m4a");
    EXPECT_EQ(fileSystem.paths(),
              (Paths{finalFile, stem + "-2 (microphone).m4a", stem + "-2.m4a",
                     stem + "-2 (system audio).m4a", stem + "-2 (microphone)-2.m4a"}));
}

TEST_F(TrackKeeping, startsOnlyIfTheTracksFitToo) {
    fileSystem.setCapacity(7'000'000);
    auto options = bothSources();
    options.trackNames = names;
    EXPECT_EQ(errorOf([&] { recorder.start(options); }), RecordingError::Case::diskTooFull);
    options.trackNames.reset();
    EXPECT_EQ(errorOf([&] { recorder.start(options); }), std::nullopt);
}

TEST_F(TrackKeeping, failureKeepsTheMixAndAllTracksInTheTemporaryFile) {
    for (const std::size_t failing : {0U, 1U}) {
        toolkit.exporting.failingTrack = failing;
        failures.clear();
        EXPECT_EQ(record(bothSources()), finalFile);
        EXPECT_EQ(fileSystem.paths(), (Paths{finalFile, stem + ".incomplete.mov"}));
        ASSERT_EQ(failures.size(), 1U);
        EXPECT_EQ(failures[0].original, stem + ".incomplete.mov");
        EXPECT_EQ(messageOf(failures[0].reason), "the disk is full");
        fileSystem.remove(finalFile);
        fileSystem.remove(stem + ".incomplete.mov");
    }
}

TEST_F(TrackKeeping, progressStaysAtItsEnd) {
    std::vector<double> reports;
    recorder.onExportProgress = [&](double done) { reports.push_back(done); };
    record(bothSources());
    EXPECT_EQ(reports, std::vector(3, 1.0)); // the mix, and each track
}

} // namespace
} // namespace vantoro::testing
