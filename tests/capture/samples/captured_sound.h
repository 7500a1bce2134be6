// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/ports/capture_stream.h"

namespace vantoro::testing {

/// One source as it was delivered.
struct DeliveredTrack {
    std::int64_t start = 0;                   ///< grid position of the first frame
    std::vector<std::vector<float>> channels; ///< all of one length
    std::size_t discontinuities = 0; ///< buffers that do not begin where the last one ended

    std::size_t frames() const { return channels.empty() ? 0 : channels.front().size(); }
};

/// Keeps all that a capture stream delivers. Any thread.
class CapturedSound final : public CaptureStreamReceiver {
public:
    void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) override;
    void didLoseSound(AudioLevelSource source, double seconds) override;
    void streamDidStop(std::exception_ptr error) override;
    void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) override;

    DeliveredTrack audio() const;
    DeliveredTrack microphone() const;
    /// By how many frames one source was ever delivered ahead of the other.
    std::int64_t largestLead() const;
    /// How many frames the oldest sample was behind the moment when it was delivered.
    std::int64_t largestDelay() const;
    /// Texts of all the errors that the stream stopped with.
    std::vector<std::string> stops() const;
    /// How many seconds the stream told to be lost, once for each time.
    std::vector<double> losses(AudioLevelSource source) const;
    /// As the stream told.
    std::vector<bool> mutes() const;
    std::vector<SourceCondition> systemObstacles() const;

    /// Waits until the condition, looked at after each buffer, holds. False when it never does.
    bool waitUntil(const std::function<bool()>& condition, std::chrono::seconds limit);
    /// Waits for this much more sound.
    bool waitForMore(double seconds);
    /// Waits until the last 100 ms of left channel, or microphone, hold a tone, or do not.
    bool waitForTone(AudioLevelSource source, double frequency, bool present = true);

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    DeliveredTrack audio_;
    DeliveredTrack microphone_;
    std::int64_t largestLead_ = 0;
    std::int64_t largestDelay_ = 0;
    std::map<AudioLevelSource, std::vector<double>> losses_;
    std::vector<std::string> stops_;
    std::vector<bool> mutes_;
    std::vector<SourceCondition> systemObstacles_;
};

/// The amplitude of one frequency in samples of 48 kHz.
double amplitudeOf(double frequency, std::span<const float> samples);

/// What a quarter of the tenths of a second reach: a player that a busy machine kept waiting for a
/// moment was silent for as long. `frequency` goes into a tenth without a rest.
double usualAmplitudeOf(double frequency, std::span<const float> samples);

/// What all tenths of a second reach: of what is not there, nothing, though a player that had to
/// wait is heard in all frequencies for an instant.
double steadyAmplitudeOf(double frequency, std::span<const float> samples);

/// The largest absolute sample.
float peakOf(std::span<const float> samples);

} // namespace vantoro::testing
