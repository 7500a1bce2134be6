// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include <QtWidgets/QProgressBar>
#include <QtWidgets/QWidget>

#include "control/work_progress.h"
#include "l10n/l10n.h"
#include "ui/style/labels.h"

namespace vantoro {

/// A thin bar and, below it, how far the work is. Hidden without work.
class ProgressRow final : public QWidget {
    Q_OBJECT

public:
    explicit ProgressRow(QWidget* parent = nullptr);

    void setProgress(const std::optional<WorkProgress>& progress, const L10n& texts);

private:
    QProgressBar* bar_;
    TonedLabel* text_;
};

} // namespace vantoro
