// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QComboBox>

namespace vantoro {

/// A choice among names of any length: one that does not fit ends in an ellipsis, and is the tool
/// tip in full.
class DevicePicker final : public QComboBox {
    Q_OBJECT

public:
    explicit DevicePicker(QWidget* parent = nullptr);

    void addDevice(const QString& name, const QVariant& id);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantoro
