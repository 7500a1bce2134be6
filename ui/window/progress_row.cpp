// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/progress_row.h"

#include <QtGui/QPainter>
#include <QtWidgets/QVBoxLayout>

#include "ui/style/fonts.h"

namespace vantoro {

namespace {

constexpr int steps = 1000;

class ThinBar final : public QProgressBar {
public:
    using QProgressBar::QProgressBar;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        constexpr float trackOpacity = 0.2F;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const double radius = height() / 2.0;
        auto track = toneColour(Tone::secondary, palette());
        track.setAlphaF(trackOpacity);
        painter.setBrush(track);
        painter.drawRoundedRect(rect(), radius, radius);
        painter.setBrush(toneColour(Tone::accent, palette()));
        const double filled = width() * static_cast<double>(value()) / steps;
        painter.drawRoundedRect(QRectF(0, 0, filled, height()), radius, radius);
    }
};

} // namespace

ProgressRow::ProgressRow(QWidget* parent)
    : QWidget(parent),
      bar_(new ThinBar(this)),
      text_(new TonedLabel(Tone::secondary, captionFont(font()), this)) {
    constexpr int barHeight = 4;
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 4, 0, 0);
    column->setSpacing(3);
    column->addWidget(bar_);
    column->addWidget(text_);
    bar_->setFixedHeight(barHeight);
    bar_->setRange(0, steps);
    bar_->setTextVisible(false);
    text_->setWordWrap(true);
    hide();
}

void ProgressRow::setProgress(const std::optional<WorkProgress>& progress, const L10n& texts) {
    if (progress) {
        const auto text = QString::fromStdString(progressText(*progress, texts));
        bar_->setValue(static_cast<int>(progress->fraction * steps));
        bar_->setAccessibleName(text);
        text_->setText(text);
    }
    setVisible(progress.has_value());
}

} // namespace vantoro
