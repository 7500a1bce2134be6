// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/device_picker.h"

#include <QtWidgets/QStylePainter>

namespace vantoro {

DevicePicker::DevicePicker(QWidget* parent) : QComboBox(parent) {
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(this, &QComboBox::currentTextChanged, this, &QWidget::setToolTip);
}

void DevicePicker::addDevice(const QString& name, const QVariant& id) {
    addItem(name, id);
    setItemData(count() - 1, name, Qt::ToolTipRole);
}

void DevicePicker::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (currentIndex() < 0) {
        option.currentText = placeholderText();
    }
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const auto place =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    // The style draws the text one pixel inside this place.
    option.currentText =
        fontMetrics().elidedText(option.currentText, Qt::ElideRight, place.width() - 2);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

} // namespace vantoro
