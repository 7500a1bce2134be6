// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/meters/level_meter_panel.h"

#include <algorithm>

#include <QtWidgets/QVBoxLayout>

namespace vantoro {

namespace {

constexpr int leastWidth = 152; // wider only for enlarged text
constexpr int spacing = 4;

} // namespace

LevelMeterPanel::LevelMeterPanel(QWidget* parent)
    : QWidget(parent),
      systemAudio_(new LevelMeterRow(Tone::systemAudio, this)),
      microphone_(new LevelMeterRow(Tone::microphone, this)) {
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(spacing);
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
