// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QTimer>
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

/// The program's only window; its owner closes it. All arguments must outlive it. Main thread.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(RecordingViewModel& model, LanguageSettings& language, UpdateChecker& updates,
               Preferences& preferences);

    /// Also shows a hidden or minimised window. The token is the desktop's permission, issued for a
    /// user action; without it, some desktops only mark the window as demanding attention.
    void bringToFront(const std::string& activationToken);

Q_SIGNALS:
    void closeRequested(); ///< by the user
    void quitRequested();  ///< by the user
    void firstPainted();   ///< during the first paint; work deferred for it may start afterwards

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeMenu();
    void makeShortcuts();
    void openMenu();
    QSize neededSize() const;
    void openAtSize();
    /// Another language may need more.
    void growAsNeeded();
    void rememberSize();
    void showTexts();
    void showUpdateState();
    void showMessage();
    QString text(L10n::Key key) const;

    RecordingViewModel& model_;
    LanguageSettings& language_;
    UpdateChecker& updates_;
    Preferences& preferences_;
    L10n texts_;
    ContentView* content_;
    QMenu* menu_ = nullptr;
    QMenu* languageMenu_ = nullptr;
    QAction* checkForUpdates_ = nullptr;
    QAction* version_ = nullptr;
    QAction* close_ = nullptr;
    QAction* quit_ = nullptr;
    MessageAlert messageAlert_;
    MessageAlert updateAlert_;
    QTimer resizing_; ///< ends when the size has settled
    QSize ownSize_;   ///< the last that the program chose
    bool isUsersSize_ = false;
    bool wasActive_ = false;
    bool wasPainted_ = false;
};

} // namespace vantoro
