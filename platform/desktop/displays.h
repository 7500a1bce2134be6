// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/ports/permissions.h"

namespace vantoro::desktop {

/// The window system's screens, the main one first. Where there is no window system, or it has no
/// screen at the moment, one virtual display: sound can be recorded on a machine without any.
///
/// Any thread. Screens belong to the application's thread: a call on another one has it look them
/// up, which its event loop must be running for, and throws when that takes longer than `limit`.
/// The application, where there is one, must live longer than any call.
class DesktopDisplays final : public ShareableContent {
public:
    explicit DesktopDisplays(std::chrono::milliseconds limit = std::chrono::seconds(2))
        : limit_(limit) {}

    std::vector<Display> displays() override;
    std::uint32_t mainDisplayID() override;

private:
    std::chrono::milliseconds limit_;
};

/// The display of each screen, told apart by what stays the same while a screen is connected (its
/// connector and serial number, say). Never empty.
std::vector<Display> displaysOf(const std::vector<std::string>& screens);

} // namespace vantoro::desktop
