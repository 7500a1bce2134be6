// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_delivery.h"

#include <future>
#include <set>

#include <gtest/gtest.h>

#include "tests/capture/samples/captured_sound.h"

namespace vantoro::testing {
namespace {

using namespace capture;

class Delivery : public ::testing::Test {
protected:
    explicit Delivery(std::chrono::seconds ringLength = CaptureFeed::defaultLength)
        : tap(std::make_shared<CaptureFeed>(AudioLevelSource::systemAudio, ringLength)),
          microphone(std::make_shared<CaptureFeed>(AudioLevelSource::microphone, ringLength)) {}

    void SetUp() override {
        addFeeds();
        delivery->begin(position - 48);
        queue.sync([] {});
    }

    void addFeeds() {
        for (const auto& feed : {tap, microphone}) {
            delivery->addFeed(feed);
        }
        position = gridPosition(nanosecondsOn(CLOCK_MONOTONIC)) + 48;
    }

    void TearDown() override { delivery->close(); }

    /// One real-time callback: writes a cycle of counting samples to both feeds, and drops it if
    /// there is no room.
    void writeCycle() {
        const Stamp stamp{.nanoseconds = static_cast<std::uint64_t>(position) * 62500 / 3,
                          .frames = 1024,
                          .clockId = 1};
        for (const auto& feed : {tap, microphone}) {
            const auto fill = [&](WritablePlanes planes) {
                for (const auto plane : planes) {
                    for (std::size_t i = 0; i < plane.size(); ++i) {
                        plane[i] = valueOf(written + i);
                    }
                }
            };
            if (!feed->ring.write(stamp, fill)) {
                feed->ring.lose(stamp.frames);
                lost.insert(written);
            }
        }
        delivery->wake();
        written += 1024;
        position += 1024;
    }

    static float valueOf(std::size_t frame) { return static_cast<float>(frame % 65536 + 1); }

    /// How many frames of a channel, from the first one written, are neither as written nor silence
    /// for a loss.
    std::size_t wrongFrames(const DeliveredTrack& track) const {
        std::size_t wrong = 0;
        for (const auto& channel : track.channels) {
            const auto first = std::ranges::find(channel, 1.0F) - channel.begin();
            for (std::size_t frame = 0; frame < written; ++frame) {
                const std::size_t at = static_cast<std::size_t>(first) + frame;
                const float expected = lost.contains(frame / 1024 * 1024) ? 0 : valueOf(frame);
                wrong += at < channel.size() && channel[at] == expected ? 0U : 1U;
            }
        }
        return wrong;
    }

    SerialQueue queue{"com.vantoro.capture"};
    CapturedSound sound;
    const std::shared_ptr<CaptureFeed> tap;
    const std::shared_ptr<CaptureFeed> microphone;
    std::shared_ptr<CaptureDelivery> delivery = std::make_shared<CaptureDelivery>(
        queue, sound, DeliveredSources{.systemAudio = true, .microphone = true});
    std::int64_t position = 0;
    std::size_t written = 0;
    std::set<std::size_t> lost; // first frames of lost cycles
};

/// Not started.
class LateDelivery : public Delivery {
protected:
    void SetUp() override { addFeeds(); }
};

/// With rings of two seconds.
class BriefDelivery : public Delivery {
protected:
    BriefDelivery() : Delivery(std::chrono::seconds(2)) {}

    /// Blocks the queue for this long.
    void standStill(int cycles) {
        std::promise<void> standing;
        std::promise<void> release;
        queue.async([&standing, blocked = release.get_future().share()] {
            standing.set_value();
            blocked.wait();
        });
        standing.get_future().wait();
        for (int i = 0; i < cycles; ++i) {
            writeCycle();
        }
        release.set_value();
        queue.sync([] {});
    }

    /// Expects both sources, in step, to have everything written except the reported losses.
    void expectAllButTheLosses(const std::vector<double>& losses) {
        EXPECT_EQ(wrongFrames(sound.audio()), 0U);
        EXPECT_EQ(wrongFrames(sound.microphone()), 0U);
        EXPECT_EQ(sound.losses(AudioLevelSource::systemAudio), losses);
        EXPECT_EQ(sound.losses(AudioLevelSource::microphone), losses);
        EXPECT_EQ(sound.audio().start, sound.microphone().start);
        EXPECT_EQ(sound.audio().frames(), sound.microphone().frames());
        EXPECT_EQ(sound.audio().discontinuities, 0U);
        EXPECT_EQ(sound.largestLead(), 1024);
    }
};

TEST_F(Delivery, losesNoFrameInAStallOfTwentyNineSeconds) {
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

TEST_F(BriefDelivery, reportsALongStallAndReplacesLostSoundBySilence) {
    writeCycle();
    queue.sync([] {});
    standStill(230);
    for (int i = 0; i < 10; ++i) {
        writeCycle();
        queue.sync([] {});
    }
    standStill(100);
    writeCycle();
    delivery->finish();
    queue.sync([] {});
    constexpr int held = 2 * 48000 / 1024; // cycles
    ASSERT_EQ(lost.size(), static_cast<std::size_t>(230 - held + 100 - held));
    EXPECT_EQ(*lost.begin(), static_cast<std::size_t>(1 + held) * 1024);
    expectAllButTheLosses({(230 - held) * 1024 / 48000.0, (100 - held) * 1024 / 48000.0});
}

TEST_F(BriefDelivery, reportsALossAtTheEnd) {
    standStill(94);
    delivery->finish();
    queue.sync([] {});
    ASSERT_EQ(lost.size(), 1U);
    expectAllButTheLosses({1024 / 48000.0});
}

TEST_F(BriefDelivery, reportsNothingForAStallThatTheRingsHold) {
    standStill(93);
    writeCycle();
    delivery->finish();
    queue.sync([] {});
    EXPECT_TRUE(lost.empty());
    expectAllButTheLosses({});
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

TEST_F(LateDelivery, startsWithSoundCapturedBeforeTheCall) {
    for (int i = 0; i < 8; ++i) {
        writeCycle();
        queue.sync([] {});
    }
    const std::int64_t begin = position - (5 * 1024);
    delivery->begin(begin);
    delivery->finish();
    queue.sync([] {});
    for (const auto& track : {sound.audio(), sound.microphone()}) {
        EXPECT_EQ(track.start, begin);
        ASSERT_GE(track.frames(), 5U * 1024);
        for (const auto& channel : track.channels) {
            EXPECT_EQ(channel.front(), valueOf(3UL * 1024));
            EXPECT_EQ(channel[(5 * 1024) - 1], valueOf((8UL * 1024) - 1));
        }
    }
}

TEST_F(Delivery, keepsTheSoundOfARemovedTap) {
    writeCycle();
    delivery->removeFeed(tap);
    delivery->finish();
    queue.sync([] {});
    EXPECT_EQ(wrongFrames(sound.audio()), 0U);
}

} // namespace
} // namespace vantoro::testing
