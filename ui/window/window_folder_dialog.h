// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include <QtCore/QPointer>
#include <QtWidgets/QFileDialog>

#include "control/ports/folder_dialog.h"

namespace vantoro {

/// The desktop's own file dialog, or Qt's where the desktop has none for us. Main thread, of a
/// program with windows.
class WindowFolderDialog final : public FolderDialog {
public:
    WindowFolderDialog() = default;
    WindowFolderDialog(const WindowFolderDialog&) = delete;
    WindowFolderDialog& operator=(const WindowFolderDialog&) = delete;
    /// Takes an open dialog away.
    ~WindowFolderDialog() override;

    /// Brings the dialog to the front when it is open already; that question is then the only one.
    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answer) override;

private:
    QPointer<QFileDialog> dialog_;
};

} // namespace vantoro
