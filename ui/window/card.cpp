// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/card.h"

#include <QtGui/QPainter>

#include "ui/style/decorations.h"
#include "ui/style/fonts.h"
#include "ui/style/metrics.h"
#include "ui/style/tones.h"

namespace vantoro {

namespace {

constexpr double radius = 10;
constexpr int margin = 12;

class Box final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(lineColour(palette()));
        painter.setBrush(cardColour(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
};

} // namespace

Card::Card(QWidget* parent)
    : QWidget(parent), title_(new QLabel(this)), box_(new Box(this)), rows_(new QVBoxLayout(box_)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    const int gap = rowGap(font());
    column->setSpacing(gap * 2 / 3);
    column->addWidget(title_);
    column->addWidget(box_);
    title_->setFont(headlineFont(font()));
    // The rows keep room for the ring themselves, where they end in something else.
    rows_->setContentsMargins(margin, gap + 3, margin - ringMargin, gap + 3);
    rows_->setSpacing(gap);
}

void Card::setTitle(const QString& title) {
    title_->setText(title);
    setAccessibleName(title);
}

void Card::addRow(QWidget* row) {
    if (rows_->count() > 0) {
        rows_->addWidget(new Separator(box_, ringMargin));
    }
    addToLastRow(row);
}

void Card::addToLastRow(QWidget* row) {
    rows_->addWidget(row);
}

} // namespace vantoro
