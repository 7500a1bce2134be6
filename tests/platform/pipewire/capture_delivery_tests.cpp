// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_delivery.h"

#include <future>

#include <gtest/gtest.h>

#include "tests/platform/pipewire/captured_sound.h"

namespace vantoro::pipewire {

namespace {

using testing::CapturedSound;

class Delivery : public ::testing::Test {
protected:
    void SetUp() override {
        for (const auto& feed : {tap, microphone}) {
            delivery->addFeed(feed);
        }
        delivery->begin();
        queue.sync([] {});
        position = gridPosition(nanosecondsOn(CLOCK_MONOTONIC)) + 48;
    }

    void TearDown() override { delivery->close(); }

    /// What a real-time callback does: a cycle of samples that count on, in both feeds.
    void writeCycle() {
        const Stamp stamp{.nanoseconds = static_cast<std::uint64_t>(position) * 62500 / 3,
                          .frames = 1024,
                          .clockId = 1};
        for (const auto& feed : {tap, microphone}) {
            ASSERT_TRUE(feed->ring.write(stamp, [&](std::span<float> target, std::size_t first) {
                for (std::size_t i = 0; i < target.size(); ++i) {
                    target[i] = valueOf(written + first + (i / feed->ring.channels()));
                }
            }));
        }
        delivery->wake();
        written += 1024;
        position += 1024;
    }

    static float valueOf(std::size_t frame) { return static_cast<float>(frame % 65536 + 1); }

    /// How many frames of a channel, from the first one written on, are not what was written.
    std::size_t wrongFrames(const testing::DeliveredTrack& track) const {
        std::size_t wrong = 0;
        for (const auto& channel : track.channels) {
            const auto first = std::ranges::find(channel, 1.0F) - channel.begin();
            for (std::size_t frame = 0; frame < written; ++frame) {
                const std::size_t at = static_cast<std::size_t>(first) + frame;
                wrong += at < channel.size() && channel[at] == valueOf(frame) ? 0U : 1U;
            }
        }
        return wrong;
    }

    SerialQueue queue{"com.vantoro.capture"};
    CapturedSound sound;
    std::shared_ptr<CaptureFeed> tap = std::make_shared<CaptureFeed>(CaptureSource::systemAudio);
    std::shared_ptr<CaptureFeed> microphone =
        std::make_shared<CaptureFeed>(CaptureSource::microphone);
    std::shared_ptr<CaptureDelivery> delivery = std::make_shared<CaptureDelivery>(
        queue, sound, DeliveredOutputs{.audio = true, .microphone = true});
    std::int64_t position = 0;
    std::size_t written = 0;
};

TEST_F(Delivery, losesNotAFrameOfTwentyNineSecondsInWhichTheQueueStoodStill) {
    std::promise<void> release;
    queue.async([blocked = release.get_future().share()] { blocked.wait(); });
    while (written < 29UL * 48000) {
        writeCycle();
    }
    release.set_value();
    delivery->finish();
    queue.sync([] {});
    EXPECT_EQ(wrongFrames(sound.audio()), 0U);
    EXPECT_EQ(wrongFrames(sound.microphone()), 0U);
    EXPECT_EQ(sound.audio().discontinuities, 0U);
    EXPECT_EQ(sound.microphone().discontinuities, 0U);
    EXPECT_EQ(sound.largestLead(), 1024);
}

TEST_F(Delivery, deliversAllThatWasCapturedUpToTheFinishAndNothingAfter) {
    writeCycle();
    writeCycle();
    delivery->finish();
    queue.sync([] {});
    EXPECT_EQ(wrongFrames(sound.audio()), 0U);
    const std::size_t delivered = sound.audio().frames();
    EXPECT_EQ(sound.microphone().frames(), delivered);
    delivery->finish();
    queue.sync([] {});
    EXPECT_EQ(sound.audio().frames(), delivered);
}

TEST_F(Delivery, keepsTheSoundOfATapThatGoes) {
    writeCycle();
    delivery->removeFeed(tap);
    delivery->finish();
    queue.sync([] {});
    EXPECT_EQ(wrongFrames(sound.audio()), 0U);
}

} // namespace

} // namespace vantoro::pipewire
