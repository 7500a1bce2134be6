// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include <QtCore/QPointer>
#include <QtWidgets/QFileDialog>

#include "control/ports/folder_dialog.h"

namespace vantoro {

/// The desktop's file dialog, or else Qt's. Main thread of a program with windows.
class WindowFolderDialog final : public FolderDialog {
public:
    WindowFolderDialog() = default;
    WindowFolderDialog(const WindowFolderDialog&) = delete;
    WindowFolderDialog& operator=(const WindowFolderDialog&) = delete;
    ~WindowFolderDialog() override;

    /// If the dialog is already open, brings it to the front and ignores this question.
    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answer) override;

private:
    QPointer<QFileDialog> dialog_;
};

} // namespace vantoro
