// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

#include <QtGui/QPalette>

namespace vantoro::testing {

struct NamedPalette {
    std::string name;
    QPalette palette;
};

/// The palettes that desktops bring, light, dark and with high contrast.
const std::vector<NamedPalette>& desktopPalettes();

} // namespace vantoro::testing
