// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_meter_panel.h"

#include <algorithm>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "ui/style/fonts.h"
#include "ui/style/percentage.h"

namespace vantoro {

namespace {

constexpr int leastWidth = 152; // wider only for enlarged text
constexpr int usualTitleWidth = 42;
constexpr int gapAfterWideTitle = 4;
constexpr int percentageWidth = 30;

} // namespace

LevelMeterRow::LevelMeterRow(Tone tone, QWidget* parent)
    : QWidget(parent),
      title_(new QLabel(this)),
      bar_(new LevelBar(tone, this)),
      percentage_(new TonedLabel(Tone::secondary, digitsFont(captionFont(font())), this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
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
    level_ = level;
    bar_->setLevel(level);
    showPercentage();
}

void LevelMeterRow::setTrouble(const QString& trouble) {
    if (trouble == toolTip()) {
        return; // true for nearly every update
    }
    setToolTip(trouble);
    bar_->setTrouble(trouble);
    percentage_->setTone(trouble.isEmpty() ? Tone::secondary : Tone::attention);
    showPercentage();
}

void LevelMeterRow::showPercentage() {
    percentage_->setText(toolTip().isEmpty() ? percentageText(level_) : QStringLiteral("!"));
}

LevelMeterPanel::LevelMeterPanel(QWidget* parent)
    : QWidget(parent),
      systemAudio_(new LevelMeterRow(Tone::systemAudio, this)),
      microphone_(new LevelMeterRow(Tone::microphone, this)) {
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(4);
    rows->addWidget(systemAudio_);
    rows->addWidget(microphone_);
    setMinimumWidth(leastWidth);
}

void LevelMeterPanel::setTexts(const QString& name, const QString& systemAudio,
                               const QString& microphone) {
    setAccessibleName(name);
    systemAudio_->setTitle(systemAudio);
    microphone_->setTitle(microphone);
    const int width = std::max(systemAudio_->titleWidth(), microphone_->titleWidth());
    systemAudio_->setTitleWidth(width);
    microphone_->setTitleWidth(width);
}

void LevelMeterPanel::setLevels(double systemAudio, double microphone) {
    systemAudio_->setLevel(systemAudio);
    microphone_->setLevel(microphone);
}

void LevelMeterPanel::setTroubles(const QString& systemAudio, const QString& microphone) {
    systemAudio_->setTrouble(systemAudio);
    microphone_->setTrouble(microphone);
}

} // namespace vantoro
