// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/samples/capture_feed.h"
#include "capture/samples/input_fold.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// A capture node of ours. Nothing is connected to it but by us. It is either a tap, which hears
/// applications in `tapChannels`, runs always, and gives stereo; or the microphone's, which runs
/// while its source does, and gives one channel.
///
/// On the loop, or under its lock, only. Once it is destroyed its feed is written to no more.
class InputStream {
public:
    enum class State : std::uint8_t { starting, paused, running, ended };

    /// Called on the loop.
    using StateChanged = std::function<void()>;

    /// What is called on the real-time thread when so many frames are waiting in the feed.
    struct Wake {
        std::size_t frames = 0;
        void (*call)(void* receiver) noexcept = nullptr;
        void* receiver = nullptr;
    };

    /// `channels`: those of a tap, or a microphone's inputs, up to `InputFold::mostInputs`. Throws
    /// `Failure`.
    InputStream(pw_core* core, std::shared_ptr<capture::CaptureFeed> feed, std::size_t channels,
                const Wake& wake, StateChanged stateChanged);
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    ~InputStream() = default;

    /// Present from when the server has made the node until the stream has ended.
    std::optional<capture::ObjectId> node() const;

    State state() const noexcept { return state_; }

    /// What the server said when it ended the stream, if anything.
    const std::string& reason() const noexcept { return reason_; }

    const std::shared_ptr<capture::CaptureFeed>& feed() const noexcept { return feed_; }

    /// Has the resampler follow the feed's `speed`.
    void applySpeed();

private:
    static void stateChanged(void* data, pw_stream_state before, pw_stream_state now,
                             const char* error);
    static void ioChanged(void* data, std::uint32_t id, void* area, std::uint32_t size);
    static void process(void* data);

    void connect();
    void setSpeed(double speed);
    void activateResampler();
    // All that follows runs on the real-time thread.
    std::uint64_t cycleTime(std::uint32_t& clockId) const noexcept;
    void takeIn(const spa_buffer& buffer) noexcept;

    static const pw_stream_events events;

    const std::shared_ptr<capture::CaptureFeed> feed_;
    const std::size_t channels_;
    const Wake wake_;
    const StateChanged stateChanged_;
    State state_ = State::starting;
    std::string reason_;
    double appliedSpeed_ = 1;
    bool resamplerIsActive_ = false;
    std::atomic<const spa_io_position*> position_{nullptr};
    capture::InputFold fold_; // the real-time thread's own
    StreamPointer stream_;
    Hook hook_; // after the stream, so that it goes first
};

} // namespace vantoro::pipewire
