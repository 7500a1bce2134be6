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

/// One source as delivered.
struct DeliveredTrack {
    std::int64_t start = 0;                   ///< grid position of the first frame
    std::vector<std::vector<float>> channels; ///< equal lengths
    std::size_t discontinuities = 0; ///< buffers that do not start at the previous one's end

    std::size_t frames() const { return channels.empty() ? 0 : channels.front().size(); }
};

/// Stores everything a capture stream delivers. Any thread.
class CapturedSound final : public CaptureStreamReceiver {
public:
    void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) override;
    void didLoseSound(AudioLevelSource source, double seconds) override;
    void streamDidStop(std::exception_ptr error) override;
    void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) override;

    DeliveredTrack audio() const;
    DeliveredTrack microphone() const;
    /// The largest lead of one source over the other, in frames.
    std::int64_t largestLead() const;
    /// The largest delay of a delivered sample, in frames.
    std::int64_t largestDelay() const;
    /// Texts of all errors the stream stopped with.
    std::vector<std::string> stops() const;
    /// Seconds of each reported loss.
    std::vector<double> losses(AudioLevelSource source) const;
    /// The reported obstacles.
    std::vector<bool> mutes() const;
    std::vector<SourceCondition> systemObstacles() const;

    /// Waits until the condition, checked after each buffer, holds. False on timeout.
    bool waitUntil(const std::function<bool()>& condition, std::chrono::seconds limit);
    /// Waits for this much more sound.
    bool waitForMore(double seconds);
    /// Waits until the last 100 ms of the left channel, or the microphone, contain a tone, or do
    /// not.
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

/// Amplitude of one frequency in samples at 48 kHz.
double amplitudeOf(double frequency, std::span<const float> samples);

/// The amplitude that a quarter of the tenths of a second reach: a busy machine may silence a
/// player for a moment. A tenth must hold whole periods of `frequency`.
double usualAmplitudeOf(double frequency, std::span<const float> samples);

/// The amplitude that all tenths of a second reach: 0 for an absent tone, although a delayed player
/// briefly sounds in all frequencies.
double steadyAmplitudeOf(double frequency, std::span<const float> samples);

/// The largest absolute sample.
float peakOf(std::span<const float> samples);

} // namespace vantoro::testing
