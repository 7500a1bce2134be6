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
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

double luminance(const QColor& colour) {
    const auto linear = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// Moves the colour towards the text colour until it stands out from the background.
QColor asSymbol(QColor colour, const QPalette& palette) {
    constexpr double least = 3;
    constexpr int steps = 10;
    const auto isSeen = [&] {
        return std::min(contrast(colour, palette.color(QPalette::Window)),
                        contrast(colour, cardColour(palette))) >= least;
    };
    for (int step = 0; step < steps && !isSeen(); ++step) {
        colour = mixed(palette.color(QPalette::WindowText), colour, 0.2F);
    }
    return colour;
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
    switch (tone) {
    case Tone::recording:
        return dark ? QColor(0xff6b5f) : QColor(0xd3222f);
    case Tone::saved:
    case Tone::microphone:
        return dark ? QColor(0x4fd483) : QColor(0x1f8f55);
    case Tone::attention:
        return dark ? QColor(0xffa64d) : QColor(0xc25a00);
    case Tone::systemAudio:
        return dark ? QColor(0x6aa8ff) : QColor(0x1f6fe0);
    case Tone::secondary:
        return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window),
                     hasHighContrast(palette) ? 0.85F : 0.65F);
    case Tone::primary:
        return palette.color(QPalette::WindowText);
    case Tone::accent:
        break;
    }
    return asSymbol(palette.color(QPalette::Highlight), palette);
}

QColor cardColour(const QPalette& palette) {
    return isDark(palette) ? mixed(QColor(Qt::white), palette.color(QPalette::Window), 0.06F)
                           : mixed(QColor(Qt::white), palette.color(QPalette::Window), 0.75F);
}

QColor idleGround(const QPalette& palette) {
    return mixed(palette.color(QPalette::Active, QPalette::WindowText),
                 palette.color(QPalette::Active, QPalette::Window), 0.12F);
}

QColor idleInk(const QPalette& palette) {
    return mixed(palette.color(QPalette::Active, QPalette::WindowText),
                 palette.color(QPalette::Active, QPalette::Window), 0.55F);
}

QColor lineColour(const QPalette& palette) {
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window),
                 hasHighContrast(palette) ? 0.6F : 0.14F);
}

} // namespace vantoro
