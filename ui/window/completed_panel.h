// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/style/labels.h"
#include "ui/style/symbol_button.h"

namespace vantoro {

/// The saved recording, and buttons to play and show it.
class CompletedPanel final : public QWidget {
    Q_OBJECT

public:
    explicit CompletedPanel(QWidget* parent = nullptr);

    void setTexts(const QString& saved, const QString& play, const QString& reveal);
    void setRecording(const std::filesystem::path& recording);

Q_SIGNALS:
    void playWanted();
    void revealWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* saved_;
    ElidedLabel* name_;
    SymbolButton* play_;
    SymbolButton* reveal_;
};

} // namespace vantoro
