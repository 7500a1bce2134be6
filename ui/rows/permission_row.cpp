// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/permission_row.h"

#include <algorithm>
#include <utility>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "ui/style/fonts.h"
#include "ui/style/labels.h"
#include "ui/style/metrics.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 18;
constexpr int frame = 4; // of a small button, in height

} // namespace

PermissionRow::PermissionRow(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolLabel(Symbol::exclamationCircle, Tone::attention, symbolSize,
                              2 * symbolMiddle, this)),
      title_(new QLabel(this)),
      note_(new TonedLabel(Tone::secondary, captionFont(font()), this)),
      state_(new TonedLabel(Tone::secondary, captionFont(font()), this)),
      settings_(new QPushButton(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, ringMargin, 0);
    row->setSpacing(textStart - 2 * symbolMiddle);
    row->addWidget(symbol_);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(note_);
    row->addLayout(texts, 1);
    row->addWidget(state_);
    row->addWidget(settings_);
    title_->setWordWrap(true);
    note_->setWordWrap(true);
    settings_->setFont(captionFont(font()));
    settings_->setAutoDefault(true);
    connect(settings_, &QPushButton::clicked, this, &PermissionRow::settingsWanted);
    showAll();
}

void PermissionRow::setTexts(Texts texts) {
    texts_ = std::move(texts);
    // The row's own height, so that a permission's change moves nothing.
    const int height =
        std::max(symbolSize, settings_->fontMetrics().size(0, texts_.settings).height() + frame);
    settings_->setFixedHeight(height);
    setMinimumHeight(height);
    showAll();
}

void PermissionRow::setGranted(bool granted, Remedy remedy) {
    granted_ = granted;
    remedy_ = remedy;
    showAll();
}

void PermissionRow::showAll() {
    symbol_->setSymbol(granted_ ? Symbol::checkmarkCircle : Symbol::exclamationCircle,
                       granted_ ? Tone::saved : Tone::attention);
    title_->setText(texts_.title);
    state_->setText(granted_ ? texts_.allowed : texts_.required);
    state_->setAccessibleName(texts_.title + QStringLiteral(": ") + state_->text());
    settings_->setText(texts_.settings);
    settings_->setAccessibleName(texts_.settings + QStringLiteral(": ") + texts_.title);
    settings_->setVisible(!granted_ && remedy_ == Remedy::settings);
    note_->setText(texts_.note);
    note_->setVisible(!granted_ && remedy_ == Remedy::note);
}

} // namespace vantoro
