// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include <QtCore/QPointer>
#include <QtWidgets/QFileDialog>

#include "control/ports/folder_panel.h"

namespace vantoro {

/// The desktop's own file dialog, or Qt's where the desktop has none for us. Main thread, of a
/// program with windows.
class DialogFolderPanel final : public FolderPanel {
public:
    DialogFolderPanel() = default;
    DialogFolderPanel(const DialogFolderPanel&) = delete;
    DialogFolderPanel& operator=(const DialogFolderPanel&) = delete;
    /// Takes an open dialog away.
    ~DialogFolderPanel() override;

    /// Brings the dialog to the front when it is open already; that question is then the only one.
    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answer) override;

private:
    QPointer<QFileDialog> dialog_;
};

} // namespace vantoro
