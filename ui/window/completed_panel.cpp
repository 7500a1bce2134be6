// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/completed_panel.h"

#include <QtCore/QFile>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "ui/style/decorations.h"
#include "ui/style/fonts.h"
#include "ui/style/metrics.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 28;
constexpr int margin = 12;
constexpr double radius = 10;

} // namespace

CompletedPanel::CompletedPanel(QWidget* parent)
    : QWidget(parent),
      saved_(new QLabel(this)),
      name_(new ElidedLabel(Tone::secondary, captionFont(font()), this)),
      play_(new SymbolButton(Symbol::play, this)),
      reveal_(new SymbolButton(Symbol::folder, this)) {
    auto* const row = new QHBoxLayout(this);
    const int inset = symbolMiddle - symbolSize / 2;
    row->setContentsMargins(margin + inset, rowGap(font()) + 3, margin, rowGap(font()) + 3);
    row->setSpacing(textStart - symbolSize - inset);
    row->addWidget(new SymbolLabel(Symbol::checkmarkCircle, Tone::saved, symbolSize, 0, this));
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(saved_);
    texts->addWidget(name_);
    row->addLayout(texts, 1);
    row->addWidget(play_);
    row->addWidget(reveal_);
    saved_->setFont(headlineFont(font()));
    connect(play_, &QToolButton::clicked, this, &CompletedPanel::playWanted);
    connect(reveal_, &QToolButton::clicked, this, &CompletedPanel::revealWanted);
}

void CompletedPanel::setTexts(const QString& saved, const QString& play, const QString& reveal) {
    saved_->setText(saved);
    play_->setHelp(play);
    reveal_->setHelp(reveal);
}

void CompletedPanel::setRecording(const std::filesystem::path& recording) {
    name_->setText(QFile::decodeName(recording.filename().c_str()));
}

void CompletedPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintOf(toneColour(Tone::saved, palette()), palette()));
    painter.drawRoundedRect(rect(), radius, radius);
}

} // namespace vantoro
