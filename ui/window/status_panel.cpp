// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/status_panel.h"

#include <algorithm>
#include <optional>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "control/transitions.h"
#include "ui/style/fonts.h"
#include "ui/style/labels.h"

namespace vantoro {

namespace {

constexpr int spacing = 12;
constexpr int lineSpacing = 2;
constexpr int leastWidth = 440; // in a window of the least width

/// The appearance of a state.
struct StatusLook {
    Tone tone = Tone::accent;
    Symbol symbol = Symbol::recordCircle;
    std::optional<L10n::Key> detail; ///< none for a failure, whose text is the detail
};

StatusLook lookOf(RecordingState::Case state) {
    using enum RecordingState::Case;
    using Key = L10n::Key;
    switch (state) {
    case preparing:
        return {Tone::accent, Symbol::recordCircle, Key::checkingPermissions};
    case recording:
        return {Tone::recording, Symbol::waveform, Key::capturingAudio};
    case processing:
        return {Tone::accent, Symbol::recordCircle, Key::mixingTracks};
    case completed:
        return {Tone::saved, Symbol::checkmark, Key::recordingReady};
    case failed:
        return {Tone::attention, Symbol::exclamation, std::nullopt};
    case idle:
        break;
    }
    return {Tone::accent, Symbol::recordCircle, Key::m4aAudio};
}

} // namespace

StatusPanel::StatusPanel(QWidget* parent)
    : QWidget(parent),
      badge_(new StatusBadge(this)),
      headline_(new QLabel(this)),
      detail_(new TonedLabel(Tone::secondary, captionFont(font()), this)),
      progress_(new ProgressRow(this)),
      elapsed_(new QLabel(this)),
      meters_(new LevelMeterPanel(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    row->addWidget(badge_, 0, Qt::AlignTop);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(lineSpacing);
    texts->addWidget(headline_);
    texts->addWidget(detail_);
    texts->addWidget(progress_);
    texts->addStretch();
    row->addLayout(texts, 1);
    auto* const right = new QVBoxLayout;
    right->setSpacing(lineSpacing);
    right->addWidget(elapsed_, 0, Qt::AlignRight);
    right->addWidget(meters_, 0, Qt::AlignRight);
    right->addStretch();
    row->addLayout(right);

    headline_->setFont(headlineFont(font()));
    detail_->setWordWrap(true);
    auto digits = digitsFont(font());
    digits.setWeight(QFont::Medium);
    elapsed_->setFont(digits);
}

void StatusPanel::setTexts(const L10n& texts) {
    const auto text = [&texts](L10n::Key key) { return QString::fromStdString(texts.text(key)); };
    meters_->setTexts(text(L10n::Key::audioInputLevels), text(L10n::Key::systemMeter),
                      text(L10n::Key::microphoneMeter));
    keepRoom(texts);
}

void StatusPanel::keepRoom(const L10n& texts) {
    const auto heightOf = [&texts](const QLabel& label, L10n::Key key, int width) {
        return label.fontMetrics()
            .boundingRect(0, 0, width, QWIDGETSIZE_MAX, Qt::TextWordWrap,
                          QString::fromStdString(texts.text(key)))
            .height();
    };
    const int width = leastWidth - badge_->width() - 2 * spacing;
    const auto time = elapsed_->fontMetrics().size(0, QStringLiteral("00:00:00"));
    const auto meters = meters_->sizeHint();
    const int detail =
        std::max(heightOf(*detail_, L10n::Key::capturingAudio, width - meters.width()),
                 heightOf(*detail_, L10n::Key::screenPermissionDenied, width - time.width()));
    const int left = heightOf(*headline_, L10n::Key::recording, width) + lineSpacing + detail;
    const int right = time.height() + lineSpacing + meters.height();
    setMinimumHeight(std::max({badge_->height(), left, right}));
}

void StatusPanel::setState(const RecordingState& state, const QString& headline,
                           const L10n& texts) {
    const auto look = lookOf(state.which());
    badge_->setStatus(look.symbol, look.tone);
    badge_->setBusy(isProcessing(state.which()));
    badge_->setAccessibleName(headline);
    headline_->setText(headline);
    detail_->setText(
        QString::fromStdString(look.detail ? texts.text(*look.detail) : state.description()));
    meters_->setVisible(state.which() == RecordingState::Case::recording);
}

void StatusPanel::setProgress(const std::optional<WorkProgress>& progress, const L10n& texts) {
    progress_->setProgress(progress, texts);
}

void StatusPanel::setElapsed(const QString& time) {
    elapsed_->setText(time);
}

void StatusPanel::setLevels(double systemAudio, double microphone) {
    meters_->setLevels(systemAudio, microphone);
}

void StatusPanel::setConditions(SourceCondition systemAudio, SourceCondition microphone,
                                const L10n& texts) {
    meters_->setTroubles(QString::fromStdString(texts.condition(systemAudio)),
                         QString::fromStdString(texts.condition(microphone)));
}

} // namespace vantoro
