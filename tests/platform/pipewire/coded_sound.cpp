// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/pipewire/coded_sound.h"

#include <array>
#include <cstdint>
#include <stdexcept>

#include <spa/param/audio/format-utils.h>
#include <spa/param/audio/iec958.h>

#include "platform/pipewire/connection.h"

namespace vantoro::testing {

using namespace vantoro::pipewire;

class CodedSound::Streams {
public:
    Streams() : connection_({.lost = [] {}, .identified = [] {}}) {
        connect(receiver_, PW_DIRECTION_INPUT, 0,
                pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Sink", PW_KEY_NODE_NAME, "receiver",
                                  nullptr));
        connect(player_, PW_DIRECTION_OUTPUT, PW_STREAM_FLAG_AUTOCONNECT,
                pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback",
                                  "target.object", "receiver", nullptr));
        connection_.run();
    }

    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    ~Streams() {
        const LoopLock lock(connection_.threadLoop());
        player_.reset();
        receiver_.reset();
    }

private:
    void connect(StreamPointer& stream, pw_direction direction, unsigned flags,
                 pw_properties* properties) {
        std::array<std::uint8_t, 512> memory{};
        spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
        spa_audio_info_iec958 info{};
        info.codec = SPA_AUDIO_IEC958_CODEC_AC3;
        info.rate = 48000;
        std::array<const spa_pod*, 1> parameters{
            spa_format_audio_iec958_build(&builder, SPA_PARAM_EnumFormat, &info)};
        stream.reset(pw_stream_new(connection_.core(), "coded", properties));
        if (pw_stream_connect(stream.get(), direction, PW_ID_ANY,
                              static_cast<pw_stream_flags>(flags), parameters.data(),
                              parameters.size()) < 0) {
            throw std::runtime_error("no coded sound");
        }
    }

    Connection connection_;
    StreamPointer receiver_;
    StreamPointer player_;
};

CodedSound::CodedSound() : streams_(std::make_unique<Streams>()) {}

CodedSound::~CodedSound() = default;

} // namespace vantoro::testing
