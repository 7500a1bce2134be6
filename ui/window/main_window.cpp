// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/main_window.h"

#include <QtCore/QEvent>
#include <QtGui/QActionGroup>
#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QMenuBar>

#include "ui/style/keys.h"
#include "ui/window/window_size.h"

namespace vantoro {

namespace {

constexpr QSize leastContent(480, 560);
constexpr QSize usualContent(500, 600);
constexpr int settlingMilliseconds = 300; // of a size under the user's mouse
const QString productName = QStringLiteral("Vantoro");

QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

MainWindow::MainWindow(RecordingViewModel& model, LanguageSettings& language,
                       UpdateChecker& updates, Preferences& preferences)
    : model_(model),
      language_(language),
      updates_(updates),
      preferences_(preferences),
      texts_(preferences),
      content_(new ContentView(model, preferences)),
      messageAlert_(*this, [this] { model_.dismissMessage(); }),
      updateAlert_(
          *this, [this] { updates_.dismissMessage(); }, [this] { updates_.openDownload(); }) {
    setWindowTitle(productName);
    content_->setMinimumSize(leastContent);
    makeMenu(); // screen readers read in the order of creation
    setCentralWidget(content_);
    makeShortcuts();
    connect(&language_, &LanguageSettings::languageChanged, this, [this] {
        showTexts();
        growAsNeeded();
    });
    connect(&updates_, &UpdateChecker::propertyChanged, this, &MainWindow::showUpdateState);
    connect(&model_, &RecordingProperties::propertyChanged, this,
            [this](RecordingProperties::Property property) {
                if (property == RecordingProperties::Property::errorMessage) {
                    showMessage();
                }
            });
    resizing_.setSingleShot(true);
    resizing_.setInterval(settlingMilliseconds);
    connect(&resizing_, &QTimer::timeout, this, &MainWindow::rememberSize);
    showTexts();
    openAtSize();
}

QSize MainWindow::neededSize() const {
    return content_->sizeHint().expandedTo(usualContent) + QSize(0, menuBar()->sizeHint().height());
}

void MainWindow::openAtSize() {
    const auto remembered = sizeOf(preferences_.get(Preference::windowSize).value_or(""));
    isUsersSize_ = remembered.has_value();
    ownSize_ = openingSize(remembered, neededSize(), screen()->availableSize());
    resize(ownSize_);
}

void MainWindow::growAsNeeded() {
    if (!isUsersSize_ && size() == ownSize_) {
        ownSize_ =
            openingSize(std::nullopt, neededSize().expandedTo(size()), screen()->availableSize());
        resize(ownSize_);
    }
}

void MainWindow::rememberSize() {
    resizing_.stop();
    const bool isOwn = !isUsersSize_ && size() == ownSize_;
    if (isOwn || windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) {
        return;
    }
    isUsersSize_ = true;
    if (const auto text = textOf(size()); preferences_.get(Preference::windowSize) != text) {
        preferences_.set(Preference::windowSize, text);
    }
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    resizing_.start();
}

void MainWindow::hideEvent(QHideEvent* event) {
    QMainWindow::hideEvent(event);
    if (resizing_.isActive()) {
        rememberSize();
    }
}

void MainWindow::bringToFront(const std::string& activationToken) {
    if (!activationToken.empty()) {
        // Where the toolkit reads the token for a Wayland compositor; it uses each token once.
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::makeMenu() {
    menu_ = menuBar()->addMenu(withAccessKey(productName, 'V'));
    languageMenu_ = menu_->addMenu(QString());
    auto* const choice = new QActionGroup(this);
    for (const auto one : allLanguages) {
        auto* const action = languageMenu_->addAction(qString(displayName(one)));
        action->setCheckable(true);
        action->setChecked(language_.language() == one);
        choice->addAction(action);
        connect(action, &QAction::triggered, this, [this, one] { language_.setLanguage(one); });
        connect(&language_, &LanguageSettings::languageChanged, action,
                [this, action, one] { action->setChecked(language_.language() == one); });
    }
    menu_->addSeparator();
    checkForUpdates_ = menu_->addAction(QString());
    connect(checkForUpdates_, &QAction::triggered, &updates_, &UpdateChecker::checkForUpdates);
    version_ = menu_->addAction(QString());
    version_->setEnabled(false);
    menu_->addSeparator();
    close_ = menu_->addAction(QString());
    close_->setShortcut(closeKeys);
    connect(close_, &QAction::triggered, this, &MainWindow::close);
    quit_ = menu_->addAction(QString());
    quit_->setShortcut(quitKeys);
    connect(quit_, &QAction::triggered, this, &MainWindow::quitRequested);
    addAction(quit_); // alerts offer the same actions
}

void MainWindow::makeShortcuts() {
    const auto on = [this](const QKeySequence& keys, auto work) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, work);
    };
    on(recordKeys, [this] { model_.toggleRecording(); });
    on(refreshKeys, [this] { model_.refreshDevicesAndPermissions(); });
    on(menuKeys, [this] { openMenu(); });
}

void MainWindow::openMenu() {
    if (menuBar()->isVisible()) {
        menuBar()->setActiveAction(menu_->menuAction());
    } else { // the desktop shows it elsewhere
        menu_->popup(mapToGlobal(QPoint(0, 0)));
    }
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        // Not on first activation: the view model has just refreshed.
        if (std::exchange(wasActive_, true)) {
            model_.refreshDevicesAndPermissions();
        }
    }
}

void MainWindow::paintEvent(QPaintEvent* event) {
    QMainWindow::paintEvent(event);
    if (!std::exchange(wasPainted_, true)) {
        Q_EMIT firstPainted();
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    Q_EMIT closeRequested();
}

QString MainWindow::text(L10n::Key key) const {
    return QString::fromStdString(texts_.text(key));
}

void MainWindow::showTexts() {
    languageMenu_->setTitle(withAccessKey(text(L10n::Key::language), 'L'));
    checkForUpdates_->setText(withAccessKey(text(L10n::Key::checkForUpdates), 'U'));
    version_->setText(QString::fromStdString(texts_.runningVersion(updates_.currentVersion())));
    close_->setText(withAccessKey(text(L10n::Key::close), 'C'));
    quit_->setText(withAccessKey(QString::fromStdString(texts_.quit()), 'Q'));
    content_->showAll();
    showUpdateState();
    showMessage();
}

void MainWindow::showUpdateState() {
    const auto& values = updates_.values();
    checkForUpdates_->setEnabled(!values.isChecking);
    updateAlert_.show(values.message,
                      {.title = text(L10n::Key::checkForUpdates),
                       .ok = text(L10n::Key::ok),
                       .action = values.downloadURL ? text(L10n::Key::downloadUpdate) : QString()});
}

void MainWindow::showMessage() {
    messageAlert_.show(model_.values().errorMessage,
                       {.title = productName, .ok = text(L10n::Key::ok), .action = QString()});
}

} // namespace vantoro
