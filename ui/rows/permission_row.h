// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

#include "ui/style/decorations.h"

namespace vantoro {

/// A permission: whether it is granted, and how to grant it.
class PermissionRow final : public QWidget {
    Q_OBJECT

public:
    enum class Remedy : std::uint8_t { none, settings, note };

    struct Texts {
        QString title;
        QString allowed;
        QString required;
        QString settings; ///< the button's label
        QString note;
    };

    explicit PermissionRow(QWidget* parent = nullptr);

    void setTexts(Texts texts);
    /// The remedy is shown only if the permission is not granted.
    void setGranted(bool granted, Remedy remedy);

Q_SIGNALS:
    void settingsWanted();

private:
    void showAll();

    Texts texts_;
    bool granted_ = false;
    Remedy remedy_ = Remedy::none;
    SymbolLabel* symbol_;
    QLabel* title_;
    QLabel* note_;
    QLabel* state_;
    QPushButton* settings_;
};

} // namespace vantoro
