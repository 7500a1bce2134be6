// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/input_row.h"

#include <QtWidgets/QHBoxLayout>

#include "ui/rows/wheel_passer.h"
#include "ui/style/metrics.h"

namespace vantoro {

InputRow::InputRow(QWidget* parent)
    : QWidget(parent), title_(new QLabel(this)), picker_(new DevicePicker(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(textStart, 0, ringMargin, 0);
    row->setSpacing(10);
    row->addWidget(title_);
    row->addWidget(picker_, 1);
    title_->setBuddy(picker_);
    new WheelPasser(*picker_);
    connect(picker_, &QComboBox::activated, this, [this](int index) {
        Q_EMIT picked(picker_->itemData(index).toByteArray().toStdString());
    });
}

void InputRow::setTitle(const QString& title) {
    title_->setText(title);
    picker_->setAccessibleName(title);
}

void InputRow::setMicrophones(const std::vector<AudioInputDevice>& microphones,
                              const std::optional<std::string>& selected, const QString& none) {
    picker_->clear();
    picker_->setCurrentIndex(-1);
    for (const auto& [id, name] : microphones) {
        picker_->addDevice(QString::fromStdString(name), QByteArray::fromStdString(id));
        if (id == selected) {
            picker_->setCurrentIndex(picker_->count() - 1);
        }
    }
    if (selected && picker_->currentData().toByteArray().toStdString() != *selected) {
        picker_->setCurrentIndex(-1); // if it is not in the list
    }
    picker_->setPlaceholderText(microphones.empty() ? none : QString());
}

} // namespace vantoro
