// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QAction>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>

#include "control/recording_view_model.h"
#include "l10n/l10n.h"
#include "l10n/language_settings.h"
#include "ui/window/content_view.h"
#include "ui/window/message_alert.h"
#include "update/update_checker.h"

namespace vantoro {

/// The program's only window. It does not close itself; its owner decides. All arguments must
/// outlive it. Main thread.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(RecordingViewModel& model, LanguageSettings& language, UpdateChecker& updates,
               const Preferences& preferences);

Q_SIGNALS:
    /// The user closes the window.
    void closeRequested();

    /// The user quits the program.
    void quitRequested();

    /// Emitted during the first paint; work that was deferred for the window may start after it.
    void firstPainted();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void makeMenu();
    void makeShortcuts();
    void showTexts();
    void showUpdateState();
    void showMessage();
    QString text(L10n::Key key) const;

    RecordingViewModel& model_;
    LanguageSettings& language_;
    UpdateChecker& updates_;
    L10n texts_;
    ContentView* content_;
    QMenu* languageMenu_ = nullptr;
    QAction* checkForUpdates_ = nullptr;
    QAction* version_ = nullptr;
    QAction* quit_ = nullptr;
    MessageAlert messageAlert_;
    MessageAlert updateAlert_;
    bool wasActive_ = false;
    bool wasPainted_ = false;
};

} // namespace vantoro
