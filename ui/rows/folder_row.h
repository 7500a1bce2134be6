// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

#include "ui/style/labels.h"
#include "ui/style/symbol_button.h"

namespace vantoro {

/// The recording folder.
class FolderRow final : public QWidget {
    Q_OBJECT

public:
    explicit FolderRow(QWidget* parent = nullptr);

    void setTexts(const QString& change, const QString& open);
    void setFolder(const std::filesystem::path& folder);

Q_SIGNALS:
    void changeWanted();
    void openWanted();

private:
    ElidedLabel* path_;
    QPushButton* change_;
    SymbolButton* open_;
};

} // namespace vantoro
