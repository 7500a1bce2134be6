// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_folder_dialog.h"

#include <system_error>
#include <utility>

#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
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

/// Qt's dialog would open a missing folder as the working directory.
std::filesystem::path nearestFolder(std::filesystem::path path) {
    std::error_code unknown;
    while (!std::filesystem::is_directory(path, unknown) && path.has_relative_path()) {
        path = path.parent_path();
    }
    return path;
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
    speak(question.language);
    dialog_ = new QFileDialog(QApplication::activeWindow(), QString::fromStdString(question.title));
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    dialog_->setFileMode(QFileDialog::Directory);
    dialog_->setOption(QFileDialog::ShowDirsOnly);
    dialog_->setLabelText(QFileDialog::Accept, QString::fromStdString(question.prompt));
    dialog_->setDirectory(QFile::decodeName(nearestFolder(question.directory).c_str()));
    QObject::connect(dialog_, &QDialog::finished, dialog_,
                     [dialog = dialog_, answered = std::move(answer)](int result) {
                         answered(choiceOf(*dialog, result));
                     });
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->open();
}

void WindowFolderDialog::speak(AppLanguage language) {
    translator_.reset();
    auto chinese = std::make_unique<QTranslator>();
    if (language == AppLanguage::chinese &&
        chinese->load(QStringLiteral("qtbase_zh_CN"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        translator_ = std::move(chinese);
        QCoreApplication::installTranslator(translator_.get());
    }
    // Before there is a dialog: told of a new language, it forgets the label of its confirm button.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
}

} // namespace vantoro
