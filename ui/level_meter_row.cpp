#include "ui/level_meter_row.h"

#include <algorithm>

#include <QtWidgets/QHBoxLayout>

#include "ui/fonts.h"
#include "ui/percentage.h"
#include "ui/toned_label.h"

namespace vantoro {

namespace {

constexpr int usualTitleWidth = 42;
constexpr int gapAfterWideTitle = 4;
constexpr int percentageWidth = 30;
constexpr int spacing = 2;

} // namespace

LevelMeterRow::LevelMeterRow(Tone tone, QWidget* parent)
    : QWidget(parent),
      title_(new QLabel(this)),
      bar_(new LevelBar(tone, this)),
      percentage_(new TonedLabel(Tone::secondary, digitsFont(captionFont(font())), this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(title_);
    row->addWidget(bar_);
    row->addWidget(percentage_);
    title_->setFont(captionFont(font()));
    percentage_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    percentage_->setText(percentageText(1));
    percentage_->setMinimumWidth(std::max(percentageWidth, percentage_->sizeHint().width()));
    setLevel(0);
}

void LevelMeterRow::setTitle(const QString& title) {
    title_->setText(title);
    bar_->setAccessibleName(title);
}

int LevelMeterRow::titleWidth() const {
    const int width = title_->sizeHint().width();
    return width <= usualTitleWidth ? usualTitleWidth : width + gapAfterWideTitle;
}

void LevelMeterRow::setTitleWidth(int width) {
    title_->setFixedWidth(width);
}

void LevelMeterRow::setLevel(double level) {
    bar_->setLevel(level);
    percentage_->setText(percentageText(level));
}

} // namespace vantoro
