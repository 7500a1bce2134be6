// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <string>
#include <utility>

#include <QtGui/QColor>
#include <QtGui/QPalette>

#include "ui/meters/level_glyph.h"
#include "ui/ports/status_area.h"

namespace vantoro {

/// The pictures of levels, each drawn once: the same stage gives the same picture. Main thread.
class LevelPictures {
public:
    explicit LevelPictures(const QColor& color) : color_(color) {}

    /// For the pictures from now on.
    void setColor(const QColor& color);

    /// In all of `levelGlyphSizes`; `level` as `stageOf` takes it.
    StatusImage picture(LevelSymbol symbol, double level);

private:
    QColor color_;
    std::map<std::pair<LevelSymbol, int>, StatusImage> drawn_;
};

/// What is seen on the desktop's panel, which does not tint pictures: light where the palette's
/// text is lighter than what it is on, or where a desktop of these names (as in
/// XDG_CURRENT_DESKTOP, with colons between) has a dark panel whatever its windows look like.
QColor panelColor(const QPalette& palette, const std::string& desktops);

} // namespace vantoro
