// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "engine/recording_types.h"

namespace vantoro {

/// The choice of microphone.
class InputRow final : public QWidget {
    Q_OBJECT

public:
    explicit InputRow(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setMicrophones(const std::vector<AudioInputDevice>& microphones,
                        const std::optional<std::string>& selected);

Q_SIGNALS:
    void picked(const std::string& id); ///< by the user

private:
    QLabel* title_;
    QComboBox* picker_;
};

} // namespace vantoro
