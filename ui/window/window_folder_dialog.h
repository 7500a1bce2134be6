// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include <QtCore/QPointer>
#include <QtCore/QTranslator>
#include <QtWidgets/QFileDialog>

#include "control/ports/folder_dialog.h"

namespace vantoro {

/// The desktop's file dialog, in the desktop's language, or else Qt's, in the program's. Main
/// thread of a program with windows.
class WindowFolderDialog final : public FolderDialog {
public:
    WindowFolderDialog() = default;
    WindowFolderDialog(const WindowFolderDialog&) = delete;
    WindowFolderDialog& operator=(const WindowFolderDialog&) = delete;
    ~WindowFolderDialog() override;

    /// Opens at the directory, or else at the nearest folder above it. If the dialog is already
    /// open, brings it to the front and ignores this question.
    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answer) override;

private:
    void speak(AppLanguage language);

    std::unique_ptr<QTranslator>
        translator_; ///< of Qt's texts; from the first dialog in Chinese on
    QPointer<QFileDialog> dialog_;
};

} // namespace vantoro
