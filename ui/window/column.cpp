// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/column.h"

#include <algorithm>

#include "ui/style/metrics.h"

namespace vantoro {

namespace {

constexpr int usualWidth = 500;
constexpr int mostWidth = 640; // of the panels

} // namespace

Column::Column(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // it scrolls to the focused widget inside it
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const content = new QWidget;
    panels_ = new QVBoxLayout(content);
    panels_->setContentsMargins(padding, padding, padding, padding);
    panels_->setSpacing(rowGap(font()) + 5);
    panels_->addStretch(1);
    content->resize(size()); // avoids a layout without texts
    setWidget(content);
}

void Column::addPanel(QWidget* panel) {
    panels_->insertWidget(panels_->count() - 1, panel); // above the free space
}

void Column::bringIntoView(QWidget* panel) {
    QMetaObject::invokeMethod(
        this,
        [this, panel] {
            if (panel->isVisible()) {
                ensureWidgetVisible(panel, 0, padding);
            }
        },
        Qt::QueuedConnection);
}

QSize Column::sizeHint() const {
    return {usualWidth, widget()->heightForWidth(usualWidth) + heightOfHiddenPanels()};
}

int Column::heightOfHiddenPanels() const {
    int height = 0;
    for (int i = 0; i < panels_->count(); ++i) {
        const auto* const panel = panels_->itemAt(i)->widget();
        if (panel != nullptr && panel->isHidden()) {
            height += panels_->spacing() + panel->sizeHint().height();
        }
    }
    return height;
}

void Column::resizeEvent(QResizeEvent* event) {
    const int side = std::max(padding, (width() - mostWidth) / 2);
    panels_->setContentsMargins(side, padding, side, padding);
    QScrollArea::resizeEvent(event);
}

} // namespace vantoro
