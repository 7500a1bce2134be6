// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/ui/window/clipping.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <gtest/gtest.h>

#include "tests/ui/window/window_parts.h"
#include "ui/meters/level_bar.h"
#include "ui/style/labels.h"

namespace vantoro::testing {

std::string describe(const QWidget& widget) {
    std::string text = widget.metaObject()->className();
    if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
        text += " " + label->text().toStdString();
    }
    return text + " " + widget.accessibleName().toStdString();
}

namespace {

bool hasRoom(const QWidget& widget) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget);
        label != nullptr && qobject_cast<const ElidedLabel*>(&widget) == nullptr) {
        const auto least =
            label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
        return label->width() >= least.width() && label->height() >= least.height();
    }
    if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
        constexpr int frame = 4;
        const int height = button->text().isEmpty()
                               ? button->sizeHint().height()
                               : button->fontMetrics().size(0, button->text()).height() + frame;
        return button->width() >= button->sizeHint().width() && button->height() >= height;
    }
    return qobject_cast<const LevelBar*>(&widget) != nullptr ||
           widget.height() >= widget.minimumSizeHint().height();
}

} // namespace

void expectNothingClipped(const QWidget& window, const std::string& picture) {
    EXPECT_EQ(visible<QScrollArea>(window).at(0)->horizontalScrollBar()->maximum(), 0) << picture;
    for (const auto* const part : visible<QWidget>(window)) {
        if (part->isWindow() || part->inherits("QScrollBar") || part->inherits("QMenu")) {
            continue;
        }
        const auto* const outer = part->parentWidget();
        EXPECT_TRUE(hasRoom(*part)) << picture << ": " << describe(*part);
        if (!outer->inherits("QWidget") || outer->objectName() == "qt_scrollarea_viewport" ||
            outer->layout() == nullptr) {
            continue;
        }
        EXPECT_TRUE(outer->rect().contains(part->geometry())) << picture << ": " << describe(*part);
        for (const auto* const other : visible<QWidget>(*outer)) {
            EXPECT_FALSE(other->parentWidget() == outer && other != part &&
                         other->geometry().intersects(part->geometry()))
                << picture << ": " << describe(*part) << " over " << describe(*other);
        }
    }
}

} // namespace vantoro::testing
