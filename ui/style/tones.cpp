// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/tones.h"

#include <algorithm>
#include <cmath>

namespace vantoro {

namespace {

QColor mixed(const QColor& one, const QColor& other, float shareOfOne) {
    const auto mix = [shareOfOne](float a, float b) {
        return shareOfOne * a + (1 - shareOfOne) * b;
    };
    // As displays have it, in whole steps.
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()))
        .rgb();
}

double luminance(const QColor& colour) {
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

constexpr double ofText = 4.5; // the least contrast
constexpr double ofSymbols = 3;

/// Moves the colour towards another until it meets the condition.
template <class IsEnough>
QColor movedTowards(const QColor& other, QColor colour, IsEnough isEnough) {
    constexpr int steps = 32;
    for (int step = 0; step < steps && !isEnough(colour); ++step) {
        colour = mixed(other, colour, 0.1F);
    }
    return colour;
}

/// The colour, moved towards the text's until it stands out from the window and the boxes.
QColor standingOut(const QColor& colour, double least, const QPalette& palette) {
    return movedTowards(palette.color(QPalette::WindowText), colour, [&](const QColor& moved) {
        return contrast(moved, palette.color(QPalette::Window)) >= least &&
               contrast(moved, cardColour(palette)) >= least &&
               contrast(moved, tintOf(moved, palette)) >= least;
    });
}

/// Also stands out from the panel of what was saved.
QColor secondaryText(const QPalette& palette, float share) {
    const auto text = palette.color(QPalette::WindowText);
    const auto saved = tintOf(toneColour(Tone::saved, palette), palette);
    return movedTowards(
        text, standingOut(mixed(text, palette.color(QPalette::Window), share), ofText, palette),
        [&](const QColor& moved) { return contrast(moved, saved) >= ofText; });
}

/// The text of what looks like a button but is disabled.
QColor paleOnButton(const QPalette& palette) {
    constexpr int gloss = 150; // percent by which styles brighten buttons, at most
    const auto button = palette.color(QPalette::Button).lighter(gloss);
    return movedTowards(palette.color(QPalette::ButtonText), toneColour(Tone::secondary, palette),
                        [&](const QColor& moved) { return contrast(moved, button) >= ofText; });
}

/// Whether this is a palette for users with impaired vision.
bool hasHighContrast(const QPalette& palette) {
    constexpr double high = 20;
    return contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)) >= high;
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::WindowText).lightnessF() >
           palette.color(QPalette::Window).lightnessF();
}

QColor toneColour(Tone tone, const QPalette& palette) {
    const bool dark = isDark(palette);
    const auto symbol = [&](QRgb inDark, QRgb inLight) {
        return standingOut(QColor(dark ? inDark : inLight), ofSymbols, palette);
    };
    switch (tone) {
    case Tone::recording:
        return symbol(0xff6b5f, 0xd3222f);
    case Tone::saved:
    case Tone::microphone:
        return symbol(0x4fd483, 0x1a7f4a);
    case Tone::attention:
        return standingOut(QColor(dark ? 0xffa64d : 0xc25a00), ofText, palette);
    case Tone::systemAudio:
        return symbol(0x6aa8ff, 0x1f6fe0);
    case Tone::secondary:
        return secondaryText(palette, hasHighContrast(palette) ? 0.85F : 0.65F);
    case Tone::primary:
        return palette.color(QPalette::WindowText);
    case Tone::strongest:
        return dark ? Qt::white : Qt::black;
    case Tone::accent:
        break;
    }
    return standingOut(palette.color(QPalette::Highlight), ofSymbols, palette);
}

QColor cardColour(const QPalette& palette) {
    return isDark(palette) ? mixed(QColor(Qt::white), palette.color(QPalette::Window), 0.06F)
                           : mixed(QColor(Qt::white), palette.color(QPalette::Window), 0.75F);
}

QColor tintOf(const QColor& colour, const QPalette& palette) {
    return mixed(colour, palette.color(QPalette::Window), 0.15F);
}

ButtonColours buttonColours(Tone tone, const QPalette& palette) {
    const QColor ink = isDark(palette) ? Qt::black : Qt::white;
    const QColor other = isDark(palette) ? Qt::white : Qt::black;
    return {movedTowards(other, toneColour(tone, palette),
                         [&](const QColor& ground) { return contrast(ground, ink) >= ofText; }),
            ink};
}

ButtonColours disabledButtonColours(const QPalette& palette) {
    const auto text = palette.color(QPalette::Active, QPalette::WindowText);
    const auto window = palette.color(QPalette::Active, QPalette::Window);
    const auto ground = mixed(text, window, 0.12F);
    return {ground, movedTowards(text, mixed(text, window, 0.55F), [&](const QColor& ink) {
                return contrast(ink, ground) >= ofText;
            })};
}

QColor offColour(const QPalette& palette) {
    const auto card = cardColour(palette);
    const auto text = palette.color(QPalette::WindowText);
    return movedTowards(text, mixed(text, card, 0.35F),
                        [&](const QColor& colour) { return contrast(colour, card) >= ofSymbols; });
}

QColor symbolOn(const QColor& ground) {
    return contrast(ground, Qt::white) >= ofSymbols ? Qt::white : Qt::black;
}

QPalette readablePalette(QPalette palette) {
    palette.setCurrentColorGroup(QPalette::Active);
    palette.setResolveMask(0); // all else follows the application's
    const auto set = [&palette](QPalette::ColorRole role, const QColor& disabled) {
        palette.setColor(QPalette::Inactive, role, palette.color(role));
        palette.setColor(QPalette::Disabled, role, disabled);
    };
    const auto onButton = paleOnButton(palette);
    set(QPalette::WindowText, toneColour(Tone::secondary, palette));
    set(QPalette::ButtonText, onButton);
    set(QPalette::Text, onButton); // some styles draw a picker's text so
    return palette;
}

QColor lineColour(const QPalette& palette) {
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window),
                 hasHighContrast(palette) ? 0.6F : 0.14F);
}

} // namespace vantoro
