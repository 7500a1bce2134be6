// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/capture/samples/captured_sound.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>

#include "capture/samples/frame_clock.h"

namespace vantoro::testing {

namespace {

/// In each tenth of a second.
std::vector<double> amplitudesFromLargest(double frequency, std::span<const float> samples) {
    constexpr std::size_t piece = 48000 / 10;
    std::vector<double> amplitudes;
    for (; samples.size() >= piece; samples = samples.subspan(piece)) {
        amplitudes.push_back(amplitudeOf(frequency, samples.first(piece)));
    }
    std::ranges::sort(amplitudes, std::greater());
    return amplitudes;
}

} // namespace

void CapturedSound::didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) {
    const std::lock_guard lock(mutex_);
    DeliveredTrack& track = source == AudioLevelSource::systemAudio ? audio_ : microphone_;
    const std::int64_t position = buffer.presentationTime.value;
    if (track.channels.empty()) {
        track.start = position;
        track.channels.resize(buffer.format.value().channelsPerFrame);
    }
    if (position != track.start + static_cast<std::int64_t>(track.frames())) {
        ++track.discontinuities;
    }
    const auto now = capture::gridPosition(capture::nanosecondsOn(CLOCK_MONOTONIC));
    largestDelay_ = std::max(largestDelay_, now - position);
    const auto frames = static_cast<std::size_t>(buffer.frameCount);
    const auto samples = buffer.samples;
    for (std::size_t channel = 0; channel < track.channels.size(); ++channel) {
        const auto plane = samples.subspan(channel * frames, frames);
        track.channels[channel].insert(track.channels[channel].end(), plane.begin(), plane.end());
    }
    if (!audio_.channels.empty() && !microphone_.channels.empty()) {
        const auto lead = static_cast<std::int64_t>(audio_.frames()) -
                          static_cast<std::int64_t>(microphone_.frames());
        largestLead_ = std::max(largestLead_, std::abs(lead));
    }
    changed_.notify_all();
}

void CapturedSound::obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) {
    const std::lock_guard lock(mutex_);
    if (source == AudioLevelSource::microphone) {
        mutes_.push_back(obstacle == SourceCondition::muted);
    } else {
        systemObstacles_.push_back(obstacle);
    }
    changed_.notify_all();
}

void CapturedSound::didLoseSound(AudioLevelSource source, double seconds) {
    const std::lock_guard lock(mutex_);
    losses_[source].push_back(seconds);
    changed_.notify_all();
}

void CapturedSound::streamDidStop(std::exception_ptr error) {
    const std::lock_guard lock(mutex_);
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& exception) {
        stops_.emplace_back(exception.what());
    }
    changed_.notify_all();
}

DeliveredTrack CapturedSound::audio() const {
    const std::lock_guard lock(mutex_);
    return audio_;
}

DeliveredTrack CapturedSound::microphone() const {
    const std::lock_guard lock(mutex_);
    return microphone_;
}

std::int64_t CapturedSound::largestDelay() const {
    const std::lock_guard lock(mutex_);
    return largestDelay_;
}

std::int64_t CapturedSound::largestLead() const {
    const std::lock_guard lock(mutex_);
    return largestLead_;
}

std::vector<SourceCondition> CapturedSound::systemObstacles() const {
    const std::lock_guard lock(mutex_);
    return systemObstacles_;
}

std::vector<bool> CapturedSound::mutes() const {
    const std::lock_guard lock(mutex_);
    return mutes_;
}

std::vector<double> CapturedSound::losses(AudioLevelSource source) const {
    const std::lock_guard lock(mutex_);
    const auto found = losses_.find(source);
    return found != losses_.end() ? found->second : std::vector<double>();
}

std::vector<std::string> CapturedSound::stops() const {
    const std::lock_guard lock(mutex_);
    return stops_;
}

bool CapturedSound::waitUntil(const std::function<bool()>& condition, std::chrono::seconds limit) {
    std::unique_lock lock(mutex_);
    const auto deadline = std::chrono::steady_clock::now() + limit;
    return changed_.wait_until(lock, deadline, [&] {
        lock.unlock(); // the condition calls us
        const bool holds = condition();
        lock.lock();
        return holds;
    });
}

bool CapturedSound::waitForMore(double seconds) {
    const auto captured = [this] {
        const std::lock_guard lock(mutex_);
        return std::max(audio_.frames(), microphone_.frames());
    };
    const std::size_t wanted = captured() + static_cast<std::size_t>(seconds * 48000);
    return waitUntil([&] { return captured() >= wanted; }, std::chrono::seconds(30));
}

bool CapturedSound::waitForTone(AudioLevelSource source, double frequency, bool present) {
    const auto heard = [&] {
        const std::lock_guard lock(mutex_);
        const DeliveredTrack& track =
            source == AudioLevelSource::systemAudio ? audio_ : microphone_;
        constexpr std::size_t window = 4800;
        if (track.frames() < window) {
            return false;
        }
        const std::span<const float> samples(track.channels.front());
        return (amplitudeOf(frequency, samples.last(window)) > 0.01) == present;
    };
    return waitUntil(heard, std::chrono::seconds(20));
}

double amplitudeOf(double frequency, std::span<const float> samples) {
    double sine = 0;
    double cosine = 0;
    const double step = 2 * std::numbers::pi * frequency / 48000;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double phase = step * static_cast<double>(i);
        sine += samples[i] * std::sin(phase);
        cosine += samples[i] * std::cos(phase);
    }
    return 2 * std::hypot(sine, cosine) / static_cast<double>(samples.size());
}

double usualAmplitudeOf(double frequency, std::span<const float> samples) {
    const auto amplitudes = amplitudesFromLargest(frequency, samples);
    return amplitudes.at(amplitudes.size() / 4);
}

double steadyAmplitudeOf(double frequency, std::span<const float> samples) {
    return amplitudesFromLargest(frequency, samples).back();
}

float peakOf(std::span<const float> samples) {
    float peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

} // namespace vantoro::testing
