// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/mix_line.h"

#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

std::vector<float> taken(MixLine& line, std::size_t frames) {
    const auto planes = line.take(frames);
    return {planes.begin(), planes.end()};
}

void add(MixLine& line, std::int64_t position, const std::vector<std::vector<float>>& channels) {
    const std::vector<std::span<const float>> planes(channels.begin(), channels.end());
    line.add(position, planes);
}

std::vector<float> countingTo(int last) {
    std::vector<float> samples;
    for (int i = 1; i <= last; ++i) {
        samples.push_back(static_cast<float>(i));
    }
    return samples;
}

TEST(MixLine, isSilentWhereNothingWasAdded) {
    MixLine line(1);
    EXPECT_EQ(taken(line, 3), (std::vector<float>{0, 0, 0}));
    add(line, 4, {countingTo(2)});
    EXPECT_EQ(taken(line, 5), (std::vector<float>{0, 1, 2, 0, 0}));
}

TEST(MixLine, beginsAtTheGridsBeginning) {
    MixLine line(1);
    add(line, 0, {countingTo(2)});
    EXPECT_EQ(taken(line, 2), (std::vector<float>{1, 2}));
}

TEST(MixLine, leavesOutWhatLiesBeforeItsFront) {
    MixLine line(2);
    line.moveFront(100);
    add(line, 97, {{1, 3, 5, 7}, {2, 4, 6, 8}});
    add(line, 90, {{1, 3}, {2, 4}});
    EXPECT_EQ(taken(line, 2), (std::vector<float>{7, 0, 8, 0}));
}

TEST(MixLine, forgetsWhatItHeldWhenItsFrontIsMoved) {
    MixLine line(1);
    add(line, 0, {countingTo(10)});
    taken(line, 2);
    line.moveFront(50);
    EXPECT_EQ(taken(line, 3), (std::vector<float>{0, 0, 0}));
}

TEST(MixLine, givesChannelAfterChannelWhateverWasTakenBefore) {
    for (const std::size_t channels : {1U, 2U}) {
        MixLine line(channels);
        std::vector<std::vector<float>> samples(channels, countingTo(16));
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (float& frame : samples[channel]) {
                frame += static_cast<float>(100 * channel);
            }
        }
        add(line, 0, samples);
        float next = 1;
        // The content moves forward in between; the last request exceeds it.
        for (const std::size_t frames : {9U, 2U, 1U, 8U}) {
            std::vector<float> expected;
            for (std::size_t channel = 0; channel < channels; ++channel) {
                for (std::size_t i = 0; i < frames; ++i) {
                    const float frame = next + static_cast<float>(i);
                    expected.push_back(frame > 16 ? 0 : frame + static_cast<float>(100 * channel));
                }
            }
            EXPECT_EQ(taken(line, frames), expected) << channels << " channels from " << next;
            next += static_cast<float>(frames);
        }
    }
}

} // namespace
} // namespace vantoro::testing
