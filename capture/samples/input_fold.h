// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace vantoro::capture {

/// Downmixes the inputs of a microphone device to mono: the mean of those that have been heard, so
/// that one microphone on one of eight inputs keeps its level.
///
/// An input is heard once it reaches 0.001 of full scale and 0.01 of the loudest input, more than
/// noise and crosstalk. It counts from then on, so that no voice's level depends on who else
/// speaks; the gain changes gradually within one piece.
class InputFold {
public:
    static constexpr std::size_t maximumInputs = 64;

    /// `inputs`: at most `maximumInputs`, each with at least as many frames as `mono`. Non-finite
    /// samples of a faulty input count as silence. Real-time safe.
    void fold(std::span<const std::span<const float>> inputs, std::span<float> mono) noexcept;

private:
    void listen(std::span<const std::span<const float>> inputs, std::size_t frames) noexcept;

    std::array<bool, maximumInputs> isHeard_{};
    float loudest_ = 0;
    std::size_t heard_ = 0; // count
    float gain_ = 1;        // at the end of the previous piece
};

} // namespace vantoro::capture
