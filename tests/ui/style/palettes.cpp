// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/ui/style/palettes.h"

#include <cstdint>

#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "ui/style/dark_colours.h"

namespace vantoro::testing {

namespace {

/// Colours as 0xRRGGBB.
struct Row {
    const char* name;
    std::uint32_t window;
    std::uint32_t windowText;
    std::uint32_t inactiveText; ///< while another window is active
    std::uint32_t disabledText;
    std::uint32_t base;
    std::uint32_t button;
    std::uint32_t buttonText;
    std::uint32_t highlight;
    std::uint32_t highlightedText;
};

// Breeze's are from KDE's colour schemes, the disabled text
// computed by the effect named there; Adwaita's and its high contrast from GNOME's style sheets;
// the last two have the greatest contrast that there is.
constexpr Row rows[] = {
    {"Breeze", 0xeff0f1, 0x232629, 0x232629, 0xa8a9aa, 0xffffff, 0xfcfcfc, 0x232629, 0x3daee9,
     0xffffff},
    {"Breeze dark", 0x2a2e32, 0xfcfcfc, 0xfcfcfc, 0x737679, 0x1b1e20, 0x31363b, 0xfcfcfc, 0x3daee9,
     0xfcfcfc},
    {"Breeze high contrast", 0x31363b, 0xfcfcfc, 0xfcfcfc, 0x787b7f, 0x232629, 0x4d4d4d, 0xfcfcfc,
     0x34495e, 0xeff0f1},
    {"Adwaita", 0xf6f5f4, 0x2e3436, 0x929595, 0x929595, 0xffffff, 0xf6f5f4, 0x2e3436, 0x3584e4,
     0xffffff},
    {"Adwaita dark", 0x353535, 0xeeeeec, 0x919190, 0x919190, 0x2d2d2d, 0x373737, 0xeeeeec, 0x15539e,
     0xffffff},
    {"Adwaita high contrast", 0xfdfdfc, 0x272c2e, 0x929595, 0x929495, 0xffffff, 0xfafaf9, 0x272c2e,
     0x1b6acb, 0xffffff},
    {"Adwaita high contrast, dark", 0x303030, 0xf3f3f1, 0x919190, 0x919191, 0x2d2d2d, 0x323232,
     0xf3f3f1, 0x0f3b71, 0xffffff},
    {"black on white", 0xffffff, 0x000000, 0x000000, 0x808080, 0xffffff, 0xffffff, 0x000000,
     0x0000c0, 0xffffff},
    {"white on black", 0x000000, 0xffffff, 0xffffff, 0x808080, 0x000000, 0x000000, 0xffffff,
     0xffff00, 0x000000},
};

QPalette paletteOf(const Row& row) {
    QPalette palette(QColor(row.button), QColor(row.window)); // also the shades of edges
    const auto set = [&palette](QPalette::ColorRole role, QRgb colour) {
        palette.setColor(QPalette::All, role, QColor(colour));
    };
    set(QPalette::Base, row.base);
    set(QPalette::Highlight, row.highlight);
    set(QPalette::HighlightedText, row.highlightedText);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        set(role, role == QPalette::ButtonText ? row.buttonText : row.windowText);
        palette.setColor(QPalette::Inactive, role, QColor(row.inactiveText));
        palette.setColor(QPalette::Disabled, role, QColor(row.disabledText));
    }
    return palette;
}

} // namespace

const std::vector<NamedPalette>& desktopPalettes() {
    static const auto all = [] {
        std::vector<NamedPalette> palettes{
            {"the toolkit's", QApplication::style()->standardPalette()},
            {"the toolkit's, dark", darkPalette()}};
        for (const auto& row : rows) {
            palettes.push_back({row.name, paletteOf(row)});
        }
        return palettes;
    }();
    return all;
}

} // namespace vantoro::testing
