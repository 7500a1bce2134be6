// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>

namespace vantoro {

/// A titled box of rows, separated by lines.
class Card final : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void addRow(QWidget* row);
    /// Adds a row without a separator above it.
    void addToLastRow(QWidget* row);

private:
    QLabel* title_;
    QWidget* box_;
    QVBoxLayout* rows_;
};

} // namespace vantoro
