// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_folder_dialog.h"

#include <utility>

#include <QtCore/QFile>
#include <QtWidgets/QApplication>

namespace vantoro {

namespace {

std::filesystem::path pathOf(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

std::optional<std::filesystem::path> choiceOf(const QFileDialog& dialog, int result) {
    const auto files = dialog.selectedFiles();
    return result == QDialog::Accepted && !files.isEmpty() ? std::optional(pathOf(files.first()))
                                                           : std::nullopt;
}

} // namespace

WindowFolderDialog::~WindowFolderDialog() {
    delete dialog_.data();
}

void WindowFolderDialog::choose(const FolderQuestion& question,
                                std::function<void(std::optional<std::filesystem::path>)> answer) {
    if (dialog_) {
        dialog_->raise();
        dialog_->activateWindow();
        return;
    }
    dialog_ = new QFileDialog(QApplication::activeWindow(), QString::fromStdString(question.title));
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    dialog_->setFileMode(QFileDialog::Directory);
    dialog_->setOption(QFileDialog::ShowDirsOnly);
    dialog_->setLabelText(QFileDialog::Accept, QString::fromStdString(question.prompt));
    dialog_->setDirectory(QFile::decodeName(question.directory.c_str()));
    QObject::connect(dialog_, &QDialog::finished, dialog_,
                     [dialog = dialog_, answered = std::move(answer)](int result) {
                         answered(choiceOf(*dialog, result));
                     });
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->open();
}

} // namespace vantoro
