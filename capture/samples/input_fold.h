// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace vantoro::capture {

/// Folds the inputs of a microphone's device to one channel: their mean, but of those only that
/// have been heard. One microphone in one of eight inputs is as loud as it is by itself, and the
/// two sides of a stereo microphone are not louder together than each.
///
/// An input has been heard once it reached a thousandth of full level, and a hundredth of the
/// loudest one: neither an open input's noise nor what comes over from its neighbour counts. From
/// then on it counts for good, so that nobody's voice changes with who else is speaking; the level
/// changes in the course of one piece.
class InputFold {
public:
    static constexpr std::size_t mostInputs = 64;

    /// `inputs`: `mostInputs` at most, of at least as many frames as `mono` has. Samples that are
    /// no numbers count as silence, so that one faulty input does not silence the others.
    /// Real-time safe.
    void fold(std::span<const std::span<const float>> inputs, std::span<float> mono) noexcept;

private:
    void listen(std::span<const std::span<const float>> inputs, std::size_t frames) noexcept;

    std::array<bool, mostInputs> isHeard_{};
    float loudest_ = 0;
    std::size_t heard_ = 0; // how many
    float gain_ = 1;        // at the end of the piece before
};

} // namespace vantoro::capture
