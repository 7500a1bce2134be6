// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/input_stream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

#include <spa/param/audio/format-utils.h>
#include <spa/param/props.h>

#include "capture/graph/channel_fold.h"
#include "engine/failure.h"
#include "platform/posix/lost_memory.h"

namespace vantoro::pipewire {

namespace {

PropertiesPointer streamProperties(AudioLevelSource source) {
    const bool isTap = source == AudioLevelSource::systemAudio;
    PropertiesPointer properties(pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_CLASS,
        "Stream/Input/Audio", PW_KEY_NODE_NAME,
        isTap ? "vantoro.system-audio" : "vantoro.microphone", PW_KEY_NODE_DESCRIPTION,
        isTap ? "System audio recording" : "Microphone recording",
        // Recording needs no low latency: the graph may run with the longest cycles that others
        // allow.
        PW_KEY_NODE_LATENCY, "4096/48000",
        // Never restore an old volume or target of a recording stream.
        "state.restore-props", "false", "state.restore-target", "false", nullptr));
    if (isTap) {
        // A tap also records silence, so it runs without input.
        pw_properties_set(properties.get(), PW_KEY_NODE_ALWAYS_PROCESS, "true");
    }
    return properties;
}

std::span<const float> samplesOf(const spa_data& data) noexcept {
    const std::uint32_t offset = data.chunk->offset;
    if (data.data == nullptr || offset > data.maxsize) {
        return {};
    }
    const auto* const start = static_cast<const std::byte*>(data.data) + offset;
    return {reinterpret_cast<const float*>(start),
            std::min(data.chunk->size, data.maxsize - offset) / sizeof(float)};
}

/// A tap's channels have positions; a microphone's inputs are only numbered.
spa_audio_info_raw format(AudioLevelSource source, std::size_t channels) {
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32P; // the graph's own format: no conversion
    info.rate = static_cast<std::uint32_t>(capture::framesPerSecond);
    info.channels = static_cast<std::uint32_t>(channels);
    constexpr std::array places{SPA_AUDIO_CHANNEL_FL, SPA_AUDIO_CHANNEL_FR, SPA_AUDIO_CHANNEL_SL,
                                SPA_AUDIO_CHANNEL_SR};
    static_assert(places.size() == capture::tapChannels.size()); // same order
    const bool isTap = source == AudioLevelSource::systemAudio;
    for (std::size_t i = 0; i < channels; ++i) {
        info.position[i] = isTap           ? static_cast<std::uint32_t>(places.at(i))
                           : channels == 1 ? static_cast<std::uint32_t>(SPA_AUDIO_CHANNEL_MONO)
                                           : static_cast<std::uint32_t>(SPA_AUDIO_CHANNEL_AUX0 + i);
    }
    return info;
}

} // namespace

const pw_stream_events InputStream::events = [] {
    pw_stream_events table{};
    table.version = PW_VERSION_STREAM_EVENTS;
    table.state_changed = stateChanged;
    table.io_changed = [](void* data, std::uint32_t id, void* area, std::uint32_t /*size*/) {
        if (id == SPA_IO_Position) {
            static_cast<InputStream*>(data)->position_.store(static_cast<spa_io_position*>(area),
                                                             std::memory_order_release);
        }
    };
    table.process = process;
    return table;
}();

InputStream::InputStream(pw_core* core, std::shared_ptr<capture::CaptureFeed> feed,
                         std::size_t channels, capture::CaptureDelivery& delivery,
                         std::int64_t wakingFrames, std::function<void()> stateChanged)
    : feed_(std::move(feed)),
      channels_(channels),
      delivery_(delivery),
      wakingFrames_(static_cast<std::size_t>(wakingFrames)),
      stateChanged_(std::move(stateChanged)),
      stream_(pw_stream_new(core, "Recording", streamProperties(feed_->source).release())) {
    if (!stream_) {
        throw Failure(FailureCode::streamNotMade);
    }
    posix::replaceLostMemory();
    pw_stream_add_listener(stream_.get(), hook_.get(), &events, this);
    connect();
}

void InputStream::connect() {
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    spa_audio_info_raw info = format(feed_->source, channels_);
    std::array<const spa_pod*, 1> parameters{
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    // Without the real-time flag a callback may see the stamp of a later cycle.
    constexpr auto flags = static_cast<pw_stream_flags>(
        static_cast<unsigned>(PW_STREAM_FLAG_MAP_BUFFERS) | PW_STREAM_FLAG_RT_PROCESS);
    if (pw_stream_connect(stream_.get(), PW_DIRECTION_INPUT, PW_ID_ANY, flags, parameters.data(),
                          parameters.size()) < 0) {
        throw Failure(FailureCode::streamNotConnected);
    }
}

std::optional<capture::ObjectId> InputStream::node() const {
    const std::uint32_t id = pw_stream_get_node_id(stream_.get());
    // After the stream ends, the id may be reused.
    return id == SPA_ID_INVALID || state_ == State::ended ? std::nullopt : std::optional(id);
}

void InputStream::checkRunning() const {
    if (state_ == State::ended) {
        throw reason_.empty() ? Failure(FailureCode::streamEnded)
                              : Failure(FailureCode::streamEndedBecause, reason_);
    }
}

bool InputStream::hasSettled() const noexcept {
    constexpr std::uint64_t cycles = 4;
    return feed_->callbacks.load(std::memory_order_relaxed) >= cycles;
}

void InputStream::applySpeed() {
    const double speed = feed_->speed.load(std::memory_order_relaxed);
    if (speed != appliedSpeed_) {
        setSpeed(speed);
    }
}

void InputStream::setSpeed(double speed) {
    auto rate = static_cast<float>(1 / speed); // input frames per output frame
    if (pw_stream_set_control(stream_.get(), SPA_PROP_rate, 1, &rate, 0) >= 0) {
        appliedSpeed_ = speed;
    }
}

void InputStream::activateResampler() {
    if (!resamplerIsActive_) {
        // The first change of speed makes a click: make it now, before any sound, not in
        // mid-recording. At speed 1 the resampler then copies.
        setSpeed(1.0001);
        setSpeed(1);
        resamplerIsActive_ = true;
    }
}

void InputStream::stateChanged(void* data, pw_stream_state /*before*/, pw_stream_state now,
                               const char* error) {
    auto& self = *static_cast<InputStream*>(data);
    switch (now) {
    case PW_STREAM_STATE_CONNECTING:
        break;
    case PW_STREAM_STATE_PAUSED:
        self.state_ = State::paused;
        break;
    case PW_STREAM_STATE_STREAMING:
        self.activateResampler();
        self.state_ = State::running;
        break;
    case PW_STREAM_STATE_ERROR:
    case PW_STREAM_STATE_UNCONNECTED:
        self.state_ = State::ended;
        self.reason_ = error != nullptr ? error : "";
        break;
    }
    self.stateChanged_();
}

void InputStream::process(void* data) {
    auto& self = *static_cast<InputStream*>(data);
    posix::expectLostMemoryHere();
    self.feed_->callbacks.fetch_add(1, std::memory_order_relaxed);
    while (pw_buffer* const buffer = pw_stream_dequeue_buffer(self.stream_.get())) {
        self.takeIn(*buffer->buffer);
        pw_stream_queue_buffer(self.stream_.get(), buffer);
    }
    if (self.feed_->ring.pendingFrames() >= self.wakingFrames_) {
        self.delivery_.wake();
    }
}

std::uint64_t InputStream::cycleTime(std::uint32_t& clockId) const noexcept {
    constexpr std::uint64_t trusted = 2'000'000'000; // ns
    const std::uint64_t now = capture::nanosecondsOn(CLOCK_MONOTONIC);
    const spa_io_position* const position = position_.load(std::memory_order_acquire);
    if (position != nullptr && position->clock.nsec < now + trusted &&
        position->clock.nsec + trusted > now) {
        clockId = position->clock.id;
        return position->clock.nsec;
    }
    return now; // no driver yet, or its clock is not set
}

void InputStream::takeIn(const spa_buffer& buffer) noexcept {
    std::array<std::span<const float>, capture::InputFold::maximumInputs> planes;
    const std::span channels = std::span(planes).first(channels_);
    if (buffer.n_datas < channels.size()) {
        return;
    }
    for (std::size_t i = 0; i < channels.size(); ++i) {
        channels[i] = samplesOf(buffer.datas[i]);
    }
    const std::size_t frames = std::ranges::min(channels, {}, &std::span<const float>::size).size();
    capture::Stamp stamp;
    stamp.nanoseconds = cycleTime(stamp.clockId);
    stamp.frames = static_cast<std::uint32_t>(frames);
    if (frames == 0) {
        return;
    }
    if (feed_->heardSince.load(std::memory_order_relaxed) == 0) {
        feed_->heardSince.store(stamp.nanoseconds, std::memory_order_relaxed);
    }
    const bool taken = feed_->ring.write(stamp, [&](capture::WritablePlanes target) {
        if (feed_->source == AudioLevelSource::systemAudio) {
            capture::foldToStereo(capture::TapPlanes{planes[0], planes[1], planes[2], planes[3]},
                                  target[0], target[1]);
        } else {
            fold_.fold(channels, target[0]);
        }
    });
    if (!taken) {
        feed_->ring.lose(stamp.frames);
    }
}

} // namespace vantoro::pipewire
