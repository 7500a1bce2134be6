// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "engine/recording_types.h"
#include "ui/rows/device_picker.h"

namespace vantoro {

/// The choice of microphone.
class InputRow final : public QWidget {
    Q_OBJECT

public:
    explicit InputRow(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// `none` stands in place of a microphone if the list is empty.
    void setMicrophones(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& selected, const QString& none);

Q_SIGNALS:
    void picked(const std::string& id); ///< by the user

private:
    QLabel* title_;
    DevicePicker* picker_;
};

} // namespace vantoro
