// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/channel_map.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spa/param/audio/raw.h>
#include <spa/param/props.h>
#include <spa/pod/builder.h>

namespace vantoro::pipewire {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What is read of parameters with this map, or with none.
std::vector<std::string> read(const std::vector<std::uint32_t>* map,
                              std::vector<std::string> before = {}) {
    std::array<std::byte, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_frame frame{};
    spa_pod_builder_init(&builder, memory.data(), static_cast<std::uint32_t>(memory.size()));
    spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Props, SPA_PARAM_Props);
    spa_pod_builder_prop(&builder, SPA_PROP_mute, 0);
    spa_pod_builder_bool(&builder, false);
    if (map != nullptr) {
        spa_pod_builder_prop(&builder, SPA_PROP_channelMap, 0);
        spa_pod_builder_array(&builder, sizeof(std::uint32_t), SPA_TYPE_Id,
                              static_cast<std::uint32_t>(map->size()), map->data());
    }
    readChannelMap(before, static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame)));
    return before;
}

TEST(ChannelMap, isReadByTheChannelsShortNames) {
    const std::vector<std::uint32_t> map{SPA_AUDIO_CHANNEL_FL, SPA_AUDIO_CHANNEL_RR,
                                         SPA_AUDIO_CHANNEL_MONO, SPA_AUDIO_CHANNEL_AUX3};
    EXPECT_THAT(read(&map, {"FC"}), ElementsAre("FL", "RR", "MONO", "AUX3"));
}

TEST(ChannelMap, thatIsNotToldStaysAsItWas) {
    EXPECT_THAT(read(nullptr, {"FC"}), ElementsAre("FC"));
    std::vector<std::string> channels{"FC"};
    readChannelMap(channels, nullptr);
    EXPECT_THAT(channels, ElementsAre("FC"));
}

TEST(ChannelMap, mayBeEmptyAndNameWhatNobodyKnows) {
    const std::vector<std::uint32_t> none;
    EXPECT_THAT(read(&none, {"FC"}), IsEmpty());
    const std::vector<std::uint32_t> strange{SPA_AUDIO_CHANNEL_FL, 999999};
    EXPECT_THAT(read(&strange), ElementsAre("FL", ""));
}

} // namespace

} // namespace vantoro::pipewire
