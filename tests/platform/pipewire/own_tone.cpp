// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/pipewire/own_tone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include <spa/param/audio/format-utils.h>

#include "platform/pipewire/connection.h"

namespace vantoro::testing {

using namespace vantoro::pipewire;

class OwnTone::Player {
public:
    explicit Player(double frequency) : connection_({.lost = [] {}, .identified = [] {}}) {
        play(frequency);
        connection_.run();
    }

    void replace(double frequency) {
        const LoopLock lock(connection_.threadLoop());
        end();
        play(frequency);
    }

    std::uint32_t node() const {
        const LoopLock lock(connection_.threadLoop());
        return pw_stream_get_node_id(stream_.get());
    }

    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    ~Player() {
        const LoopLock lock(connection_.threadLoop());
        end();
    }

private:
    /// The real-time thread uses the pointer until the stream has ended.
    void end() {
        hook_.reset();
        pw_stream_destroy(stream_.get());
        static_cast<void>(stream_.release());
    }

    void play(double frequency) {
        step_ = 2 * std::numbers::pi * frequency / 48000;
        stream_.reset(pw_stream_new(connection_.core(), "own tone",
                                    pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio",
                                                      PW_KEY_MEDIA_CATEGORY, "Playback", nullptr)));
        pw_stream_add_listener(stream_.get(), hook_.emplace().get(), &events, this);
        std::array<std::uint8_t, 512> memory{};
        spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
        spa_audio_info_raw info{};
        info.format = SPA_AUDIO_FORMAT_F32;
        info.rate = 48000;
        info.channels = 1;
        info.position[0] = SPA_AUDIO_CHANNEL_MONO;
        std::array<const spa_pod*, 1> parameters{
            spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
        // On the real-time thread: PipeWire 0.3.65 may still call on the loop for a stream that has
        // been destroyed there.
        // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): flags are there to combine
        constexpr auto flags =
            static_cast<pw_stream_flags>(static_cast<unsigned>(PW_STREAM_FLAG_AUTOCONNECT) |
                                         PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
        if (pw_stream_connect(stream_.get(), PW_DIRECTION_OUTPUT, PW_ID_ANY, flags,
                              parameters.data(), parameters.size()) < 0) {
            throw std::runtime_error("no playback");
        }
    }

    static void process(void* data) {
        auto& self = *static_cast<Player*>(data);
        pw_buffer* const buffer = pw_stream_dequeue_buffer(self.stream_.get());
        if (buffer == nullptr) {
            return;
        }
        const spa_data& target = buffer->buffer->datas[0];
        const std::size_t frames = std::min<std::size_t>(target.maxsize / sizeof(float), 1024);
        auto* const samples = static_cast<float*>(target.data);
        for (std::size_t i = 0; i < frames; ++i) {
            samples[i] = static_cast<float>(0.25 * std::sin(self.phase_));
            self.phase_ += self.step_;
        }
        target.chunk->offset = 0;
        target.chunk->stride = sizeof(float);
        target.chunk->size = static_cast<std::uint32_t>(frames * sizeof(float));
        pw_stream_queue_buffer(self.stream_.get(), buffer);
    }

    static constexpr pw_stream_events events = [] {
        pw_stream_events table{};
        table.version = PW_VERSION_STREAM_EVENTS;
        table.process = process;
        return table;
    }();

    double step_ = 0;
    double phase_ = 0;
    Connection connection_;
    StreamPointer stream_;
    std::optional<Hook> hook_;
};

OwnTone::OwnTone(double frequency) : player_(std::make_unique<Player>(frequency)) {}

void OwnTone::replace(double frequency) {
    player_->replace(frequency);
}

std::uint32_t OwnTone::node() const {
    return player_->node();
}

OwnTone::~OwnTone() = default;

} // namespace vantoro::testing
