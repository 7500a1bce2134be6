// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/node_parameters.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spa/param/audio/raw.h>
#include <spa/param/props.h>
#include <spa/pod/builder.h>

namespace vantoro::testing {
namespace {

using namespace pipewire;

using capture::MixerSetting;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Parameters in a node's format.
class NodeParameters {
public:
    NodeParameters() {
        spa_pod_builder_init(&builder_, memory_.data(), static_cast<std::uint32_t>(memory_.size()));
        spa_pod_builder_push_object(&builder_, &frame_, SPA_TYPE_OBJECT_Props, SPA_PARAM_Props);
    }

    NodeParameters& flag(std::uint32_t key, bool value) {
        spa_pod_builder_prop(&builder_, key, 0);
        spa_pod_builder_bool(&builder_, value);
        return *this;
    }

    NodeParameters& gain(std::uint32_t key, float value) {
        spa_pod_builder_prop(&builder_, key, 0);
        spa_pod_builder_float(&builder_, value);
        return *this;
    }

    NodeParameters& gains(std::uint32_t key, const std::vector<float>& values) {
        spa_pod_builder_prop(&builder_, key, 0);
        spa_pod_builder_array(&builder_, sizeof(float), SPA_TYPE_Float,
                              static_cast<std::uint32_t>(values.size()), values.data());
        return *this;
    }

    NodeParameters& map(const std::vector<std::uint32_t>& channels) {
        spa_pod_builder_prop(&builder_, SPA_PROP_channelMap, 0);
        spa_pod_builder_array(&builder_, sizeof(std::uint32_t), SPA_TYPE_Id,
                              static_cast<std::uint32_t>(channels.size()), channels.data());
        return *this;
    }

    MixerSetting read(MixerSetting before = {}) {
        readMixerSetting(before, finish());
        return before;
    }

    std::vector<std::string> readChannels(std::vector<std::string> before) {
        readChannelMap(before, finish());
        return before;
    }

private:
    const spa_pod* finish() {
        return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder_, &frame_));
    }

    std::array<std::byte, 1024> memory_{};
    spa_pod_builder builder_{};
    spa_pod_frame frame_{};
};

constexpr MixerSetting audible{};
constexpr MixerSetting muted{.isMuted = true};
constexpr MixerSetting turnedDown{.isVolumeZero = true};

TEST(MixerSetting, isReadFromTheNodesParameters) {
    struct Case {
        const char* what;
        std::function<void(NodeParameters&)> build;
        MixerSetting expected;
    };

    const Case table[] = {
        {"full volume",
         [](auto& node) {
             node.flag(SPA_PROP_mute, false).gains(SPA_PROP_channelVolumes, {1.0F, 1.0F});
         },
         audible},
        {"muted", [](auto& node) { node.flag(SPA_PROP_mute, true); }, muted},
        {"muted in place of the hardware",
         [](auto& node) { node.flag(SPA_PROP_mute, false).flag(SPA_PROP_softMute, true); }, muted},
        {"muted by the hardware",
         [](auto& node) { node.flag(SPA_PROP_mute, true).flag(SPA_PROP_softMute, false); }, muted},
        {"one channel left", [](auto& node) { node.gains(SPA_PROP_channelVolumes, {0.0F, 0.1F}); },
         audible},
        {"all channels at zero",
         [](auto& node) { node.gains(SPA_PROP_channelVolumes, {0.0F, 0.0F}); }, turnedDown},
        {"1 % of a mixer", [](auto& node) { node.gains(SPA_PROP_channelVolumes, {0.000001F}); },
         turnedDown},
        {"quiet", [](auto& node) { node.gains(SPA_PROP_channelVolumes, {0.001F}); }, audible},
        {"a 16-bit sample's smallest step",
         [](auto& node) { node.gains(SPA_PROP_channelVolumes, {0x1p-15F}); }, audible},
        {"just below it",
         [](auto& node) { node.gains(SPA_PROP_channelVolumes, {std::nextafter(0x1p-15F, 0.0F)}); },
         turnedDown},
        {"all channels together at zero",
         [](auto& node) {
             node.gain(SPA_PROP_volume, 0.0F).gains(SPA_PROP_channelVolumes, {1.0F});
         },
         turnedDown},
        {"zero in place of the hardware",
         [](auto& node) {
             node.gains(SPA_PROP_channelVolumes, {1.0F}).gains(SPA_PROP_softVolumes, {0.0F});
         },
         turnedDown},
        {"muted at zero",
         [](auto& node) { node.flag(SPA_PROP_mute, true).gains(SPA_PROP_channelVolumes, {0.0F}); },
         {.isMuted = true, .isVolumeZero = true}},
        {"no channels", [](auto& node) { node.gains(SPA_PROP_channelVolumes, {}); }, audible},
        {"nothing", [](auto&) {}, audible},
    };
    for (const auto& [what, build, expected] : table) {
        NodeParameters node;
        build(node);
        EXPECT_EQ(node.read(), expected) << what;
        EXPECT_EQ(expected.isSilent(), expected != audible) << what;
    }
}

TEST(MixerSetting, keepsFieldsThatAreNotRepeated) {
    EXPECT_EQ(NodeParameters().gains(SPA_PROP_channelVolumes, {1.0F}).read(muted), muted);
    EXPECT_EQ(NodeParameters().flag(SPA_PROP_mute, false).read(turnedDown), turnedDown);
    EXPECT_EQ(NodeParameters().flag(SPA_PROP_mute, false).read(muted), audible);
}

TEST(MixerSetting, isNotReadFromAnythingElse) {
    auto setting = muted;
    readMixerSetting(setting, nullptr);
    const spa_pod number{.size = 0, .type = SPA_TYPE_None};
    readMixerSetting(setting, &number);
    EXPECT_EQ(setting, muted);
}

TEST(ChannelMap, isReadByTheChannelsShortNames) {
    const std::vector<std::uint32_t> map{SPA_AUDIO_CHANNEL_FL, SPA_AUDIO_CHANNEL_RR,
                                         SPA_AUDIO_CHANNEL_MONO, SPA_AUDIO_CHANNEL_AUX3};
    EXPECT_THAT(NodeParameters().map(map).readChannels({"FC"}),
                ElementsAre("FL", "RR", "MONO", "AUX3"));
}

TEST(ChannelMap, thatIsNotToldStaysAsItWas) {
    EXPECT_THAT(NodeParameters().flag(SPA_PROP_mute, false).readChannels({"FC"}),
                ElementsAre("FC"));
    std::vector<std::string> before{"FC"};
    readChannelMap(before, nullptr);
    EXPECT_THAT(before, ElementsAre("FC"));
}

TEST(ChannelMap, mayBeEmptyAndNameWhatNobodyKnows) {
    const std::vector<std::uint32_t> none;
    EXPECT_THAT(NodeParameters().map(none).readChannels({"FC"}), IsEmpty());
    const std::vector<std::uint32_t> strange{SPA_AUDIO_CHANNEL_FL, 999999};
    EXPECT_THAT(NodeParameters().map(strange).readChannels({}), ElementsAre("FL", ""));
}

} // namespace
} // namespace vantoro::testing
