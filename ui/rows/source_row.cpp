// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/source_row.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "ui/style/decorations.h"
#include "ui/style/fonts.h"
#include "ui/style/labels.h"
#include "ui/style/metrics.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 22;

} // namespace

SourceRow::SourceRow(Symbol symbol, QWidget* parent)
    : QWidget(parent),
      title_(new QLabel(this)),
      subtitle_(new TonedLabel(Tone::secondary, captionFont(font()), this)),
      switch_(new ToggleSwitch(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(textStart - 2 * symbolMiddle);
    row->addWidget(new SymbolLabel(symbol, Tone::secondary, symbolSize, 2 * symbolMiddle, this));
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(subtitle_);
    row->addLayout(texts, 1);
    row->addWidget(switch_);
    // Not `clicked`: a screen reader toggles without clicking.
    connect(switch_, &QCheckBox::toggled, this, &SourceRow::switched);
}

void SourceRow::setTexts(const QString& title, const QString& subtitle) {
    title_->setText(title);
    subtitle_->setText(subtitle);
    switch_->setAccessibleName(title);
    switch_->setAccessibleDescription(subtitle);
}

void SourceRow::setOn(bool on) {
    const QSignalBlocker notByTheUser(switch_);
    switch_->setChecked(on);
}

} // namespace vantoro
