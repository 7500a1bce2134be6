// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/samples/capture_delivery.h"
#include "capture/samples/input_fold.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// One of our capture nodes; only we link to it. Either a tap, which records applications in
/// `tapChannels`, always runs, and delivers stereo; or the microphone's, which runs while its
/// source does, and delivers mono. Only on the loop or under its lock. After destruction nothing
/// writes to its feed.
class InputStream {
public:
    enum class State : std::uint8_t { starting, paused, running, ended };

    /// `channels`: the tap's, or the microphone's inputs (at most `InputFold::maximumInputs`).
    /// Wakes the delivery, which must outlive this, once `wakingFrames` wait in the feed. The loop
    /// calls `stateChanged`. Throws `Failure`.
    InputStream(pw_core* core, std::shared_ptr<capture::CaptureFeed> feed, std::size_t channels,
                capture::CaptureDelivery& delivery, std::int64_t wakingFrames,
                std::function<void()> stateChanged);

    /// Present once the server has created the node, until the stream ends.
    std::optional<capture::ObjectId> node() const;

    State state() const noexcept { return state_; }

    /// Throws `Failure`, with the server's reason if it gave one, once the stream has ended.
    void checkRunning() const;

    /// Whether sound flows steadily: the first cycles after linking are often short or late. Sound
    /// heard meanwhile is kept.
    bool hasSettled() const noexcept;

    const std::shared_ptr<capture::CaptureFeed>& feed() const noexcept { return feed_; }

    /// Applies the feed's `speed` to the resampler.
    void applySpeed();

private:
    static void stateChanged(void* data, pw_stream_state before, pw_stream_state now,
                             const char* error);
    static void process(void* data);

    void connect();
    void setSpeed(double speed);
    void activateResampler();
    // Real-time thread only:
    std::uint64_t cycleTime(std::uint32_t& clockId) const noexcept;
    void takeIn(const spa_buffer& buffer) noexcept;

    static const pw_stream_events events;

    const std::shared_ptr<capture::CaptureFeed> feed_;
    const std::size_t channels_;
    capture::CaptureDelivery& delivery_;
    const std::size_t wakingFrames_;
    const std::function<void()> stateChanged_;
    State state_ = State::starting;
    std::string reason_;
    double appliedSpeed_ = 1;
    bool resamplerIsActive_ = false;
    std::atomic<const spa_io_position*> position_{nullptr};
    capture::InputFold fold_; // real-time thread only
    StreamPointer stream_;
    Hook hook_; // after the stream: must be destroyed first
};

} // namespace vantoro::pipewire
