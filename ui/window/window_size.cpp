// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_size.h"

#include <charconv>
#include <string_view>

namespace vantoro {

namespace {

constexpr int titleBar = 40; // unknown until the window is shown
constexpr int mostLength = 32767;

/// Of a positive number that makes up the whole text; none if it is something else.
std::optional<int> lengthOf(std::string_view text) {
    int length = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, length);
    const bool isLength = error == std::errc() && stop == end && length > 0 && length <= mostLength;
    return isLength ? std::optional(length) : std::nullopt;
}

} // namespace

std::string textOf(const QSize& size) {
    return std::to_string(size.width()) + 'x' + std::to_string(size.height());
}

std::optional<QSize> sizeOf(const std::string& text) {
    const auto middle = text.find('x');
    if (middle == std::string::npos) {
        return std::nullopt;
    }
    const auto width = lengthOf(std::string_view(text).substr(0, middle));
    const auto height = lengthOf(std::string_view(text).substr(middle + 1));
    return width && height ? std::optional(QSize(*width, *height)) : std::nullopt;
}

QSize openingSize(const std::optional<QSize>& remembered, const QSize& needed, const QSize& room) {
    return remembered.value_or(needed).boundedTo(room - QSize(0, titleBar));
}

} // namespace vantoro
