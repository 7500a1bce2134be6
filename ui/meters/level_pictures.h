// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <string>
#include <tuple>

#include <QtGui/QColor>
#include <QtGui/QPalette>

#include "ui/meters/level_glyph.h"
#include "ui/ports/status_area.h"

namespace vantoro {

/// Pictures of levels; draws each stage once and caches it. Main thread.
class LevelPictures {
public:
    explicit LevelPictures(const QColor& color) : color_(color) {}

    void setColor(const QColor& color);

    /// In all `levelGlyphSizes`; `level` as for `stageOf`. Marked while recording, since a silent
    /// source looks like one that is not recorded.
    StatusImage picture(LevelSymbol symbol, double level, bool isRecording);

private:
    QColor color_;
    std::map<std::tuple<LevelSymbol, int, bool>, StatusImage> drawn_;
};

/// A colour that is visible on the desktop's panel: light if the palette is dark, or if one of
/// `desktops` (XDG_CURRENT_DESKTOP, colon-separated) always has a dark panel.
QColor panelColor(const QPalette& palette, const std::string& desktops);

} // namespace vantoro
