// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_pictures.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include "ui/meters/recording_mark.h"

namespace vantoro {

namespace {

constexpr QRgb light = 0xfff2f2f2;
constexpr QRgb dark = 0xff2e3436;

bool panelIsAlwaysDark(const QStringList& desktops) {
    return desktops.contains("GNOME", Qt::CaseInsensitive) ||
           desktops.contains("Unity", Qt::CaseInsensitive);
}

} // namespace

void LevelPictures::setColor(const QColor& color) {
    if (color != color_) {
        color_ = color;
        drawn_.clear();
    }
}

StatusImage LevelPictures::picture(LevelSymbol symbol, double level, bool isRecording) {
    const int stage = stageOf(level);
    auto& picture = drawn_[{symbol, stage, isRecording}];
    if (picture.isEmpty()) {
        for (const int size : levelGlyphSizes) {
            picture.push_back(drawOutlinedLevelGlyph(symbol, stage, size, color_));
            if (isRecording) {
                drawRecordingMark(picture.back(), color_);
            }
        }
    }
    return picture;
}

QColor panelColor(const QPalette& palette, const std::string& desktops) {
    const auto lightness = [&](QPalette::ColorRole role) {
        return palette.color(QPalette::Active, role).lightness();
    };
    const bool lightText = lightness(QPalette::WindowText) > lightness(QPalette::Window);
    const auto names = QString::fromStdString(desktops).split(':');
    return QColor::fromRgba(lightText || panelIsAlwaysDark(names) ? light : dark);
}

} // namespace vantoro
