// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/message_alert.h"

#include <utility>

#include <QtWidgets/QPushButton>

#include "ui/style/symbols.h"

namespace vantoro {

namespace {

constexpr int iconSize = 48;

} // namespace

MessageAlert::MessageAlert(QWidget& window, std::function<void()> dismissed,
                           std::function<void()> acted)
    : window_(window), dismissed_(std::move(dismissed)), acted_(std::move(acted)) {}

MessageAlert::~MessageAlert() {
    delete box_.data();
}

void MessageAlert::show(const std::optional<std::string>& message, const Texts& texts) {
    if (!message) {
        delete box_.data(); // without a callback, since the user did not close it
        return;
    }
    const auto text = QString::fromStdString(*message);
    const bool withAction = !texts.action.isEmpty();
    if (!isOpenWith(text, withAction)) {
        delete box_.data();
        open(text, texts);
    }
    setTexts(texts);
    box_->open();
}

bool MessageAlert::isOpenWith(const QString& message, bool withAction) const {
    return box_ != nullptr && box_->isVisible() && box_->text() == message &&
           (action_ != nullptr) == withAction;
}

void MessageAlert::open(const QString& message, const Texts& texts) {
    box_ = new QMessageBox(&window_);
    box_->setAttribute(Qt::WA_DeleteOnClose);
    box_->setTextFormat(Qt::PlainText);
    box_->setText(message);
    box_->addActions(window_.actions()); // for their shortcuts
    box_->setIconPixmap(applicationIcon().pixmap(iconSize, iconSize));
    // Qt 6.8 adds no button without a text.
    auto* const ok = box_->addButton(texts.ok, QMessageBox::AcceptRole);
    box_->setDefaultButton(ok);
    box_->setEscapeButton(ok);
    ok_ = ok;
    if (!texts.action.isEmpty()) {
        action_ = box_->addButton(texts.action, QMessageBox::ActionRole);
        QObject::connect(action_, &QAbstractButton::clicked, box_, [this] { acted_(); });
    }
    QObject::connect(
        box_, &QDialog::finished, &window_,
        [this, closed = box_] {
            if (box_ == closed) { // otherwise a newer message is open
                dismissed_();
            }
        },
        Qt::QueuedConnection);
}

void MessageAlert::setTexts(const Texts& texts) {
    box_->setWindowTitle(texts.title);
    ok_->setText(texts.ok);
    if (action_ != nullptr) {
        action_->setText(texts.action);
    }
}

} // namespace vantoro
