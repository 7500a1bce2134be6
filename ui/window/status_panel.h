// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "control/recording_properties.h"
#include "l10n/l10n.h"
#include "ui/meters/level_meter_panel.h"
#include "ui/window/progress_row.h"
#include "ui/window/status_badge.h"

namespace vantoro {

/// The status: badge, text, elapsed time and, while recording, levels.
class StatusPanel final : public QWidget {
    Q_OBJECT

public:
    explicit StatusPanel(QWidget* parent = nullptr);

    void setTexts(const L10n& texts);
    void setState(const RecordingState& state, const QString& headline, const L10n& texts);
    void setProgress(const std::optional<WorkProgress>& progress, const L10n& texts);
    void setElapsed(const QString& time);
    void setLevels(double systemAudio, double microphone);
    void setConditions(SourceCondition systemAudio, SourceCondition microphone, const L10n& texts);

private:
    /// For the meters and for details of usual length, so that no state moves what is below.
    void keepRoom(const L10n& texts);

    StatusBadge* badge_;
    QLabel* headline_;
    QLabel* detail_;
    ProgressRow* progress_;
    QLabel* elapsed_;
    LevelMeterPanel* meters_;
};

} // namespace vantoro
