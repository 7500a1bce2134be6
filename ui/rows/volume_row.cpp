// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/volume_row.h"

#include <algorithm>
#include <cmath>

#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QHBoxLayout>

#include "ui/style/fonts.h"
#include "ui/style/labels.h"
#include "ui/style/metrics.h"
#include "ui/style/percentage.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 18;
constexpr int symbolPlace = 20;
constexpr int spacing = 6;
constexpr int usualTitleWidth = 84;
constexpr int percentageWidth = 38;
constexpr double loudest = 1.25;
constexpr double dimmed = 0.45;

int stepsOf(double volume) {
    return static_cast<int>(std::lround(volume * VolumeRow::stepsPerUnit));
}

} // namespace

VolumeRow::VolumeRow(Symbol symbol, double usual, QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(symbol, Tone::secondary, symbolSize, symbolPlace, this)),
      title_(new TonedLabel(Tone::primary, font(), this)),
      slider_(new VolumeSlider(stepsOf(usual), stepsOf(1), this)),
      percentage_(new TonedLabel(Tone::secondary, digitsFont(captionFont(font())), this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(symbolMiddle - symbolPlace / 2, 0, ringMargin, 0);
    row->setSpacing(spacing);
    row->addWidget(symbol_);
    row->addSpacing(textStart - symbolMiddle - symbolPlace / 2 - spacing);
    row->addWidget(title_);
    row->addWidget(slider_, 1);
    row->addWidget(percentage_);
    slider_->setRange(0, stepsOf(loudest));
    slider_->setSingleStep(stepsPerUnit / 100);
    slider_->setPageStep(stepsPerUnit / 10);
    percentage_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    percentage_->setText(percentageText(loudest));
    percentage_->setFixedWidth(std::max(percentageWidth, percentage_->sizeHint().width()));
    connect(slider_, &QSlider::valueChanged, this,
            [this](int steps) { Q_EMIT volumeMoved(static_cast<double>(steps) / stepsPerUnit); });
}

void VolumeRow::setTitle(const QString& title) {
    title_->setText(title);
    slider_->setAccessibleName(title);
}

int VolumeRow::titleWidth() const {
    return std::max(usualTitleWidth, title_->sizeHint().width());
}

void VolumeRow::setTitleWidth(int width) {
    title_->setFixedWidth(width);
}

void VolumeRow::setVolume(double volume) {
    const QSignalBlocker notByTheUser(slider_);
    slider_->setValue(stepsOf(volume));
    percentage_->setText(percentageText(volume));
}

void VolumeRow::setUsable(bool usable) {
    setEnabled(usable);
    symbol_->setTone(usable ? Tone::secondary : Tone::strongest);
    title_->setTone(usable ? Tone::primary : Tone::strongest);
    percentage_->setTone(usable ? Tone::secondary : Tone::strongest);
    auto* const effect = usable ? nullptr : new QGraphicsOpacityEffect(this);
    if (effect != nullptr) {
        effect->setOpacity(dimmed);
    }
    setGraphicsEffect(effect);
}

} // namespace vantoro
