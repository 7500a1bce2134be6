// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recording_types.h"

#include <unordered_set>

#include <gtest/gtest.h>

#include "engine/failure.h"

namespace vantoro::testing {
namespace {

TEST(RecordingTypes, devicesOfOneIdentifierButTwoNamesDiffer) {
    const AudioInputDevice one{"alsa_input.usb", "Headset"};
    const AudioInputDevice other{"alsa_input.usb", "Headset Mono"};
    EXPECT_NE(one, other);
    EXPECT_NE(std::hash<AudioInputDevice>{}(one), std::hash<AudioInputDevice>{}(other));
    EXPECT_EQ((std::unordered_set<AudioInputDevice>{one, other, one}.size()), 2U);
}

TEST(RecordingTypes, deviceHashFeedsIdentifierBeforeName) {
    const std::hash<AudioInputDevice> hash;
    EXPECT_NE(hash({"a", "b"}), hash({"b", "a"}));
}

TEST(RecordingTypes, optionsWithBothSourcesOffAreAValue) {
    const RecordingOptions options{false, false, std::nullopt, "/recordings"};
    const RecordingOptions copy = options;
    EXPECT_EQ(copy, options);
}

TEST(RecordingTypes, onlyWriterFailedHasAMessage) {
    EXPECT_EQ(RecordingError::writerFailed("disk").message(), "disk");
    EXPECT_EQ(RecordingError(RecordingError::Case::exportFailed).message(), "");
    EXPECT_EQ(RecordingError::writerFailed("disk"), RecordingError::writerFailed("disk"));
    EXPECT_NE(RecordingError::writerFailed("disk"), RecordingError::writerFailed("card"));
    EXPECT_NE(RecordingError(RecordingError::Case::exportFailed),
              RecordingError(RecordingError::Case::noAudioCaptured));
}

TEST(RecordingTypes, writerFailureKeepsItsCauseAndThatsTextAsItsMessage) {
    const auto cause = std::make_exception_ptr(Failure(FailureCode::sampleNotWritten));
    const auto error = RecordingError::writerFailed(cause);
    EXPECT_EQ(error.cause(), cause);
    EXPECT_EQ(error.message(), "Unable to write an audio sample.");
    EXPECT_EQ(error, RecordingError::writerFailed(error.message()));
    EXPECT_EQ(RecordingError::writerFailed("disk").cause(), nullptr);
}

TEST(RecordingTypes, errorTellsDevelopersItsCaseAndDetail) {
    EXPECT_STREQ(RecordingError::writerFailed("disk").what(), "writerFailed: disk");
    EXPECT_STREQ(RecordingError(RecordingError::Case::noDisplayAvailable).what(),
                 "noDisplayAvailable");
}

} // namespace
} // namespace vantoro::testing
