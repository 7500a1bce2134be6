// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QMessageBox>

namespace vantoro {

/// An alert over the window, open while there is a message. Main thread.
class MessageAlert {
public:
    struct Texts {
        QString title;
        QString ok;
        QString action; ///< the label of a second button; empty for none
    };

    /// `dismissed` is called when the user closes the alert, in any way; `acted` before that if it
    /// was by the second button.
    MessageAlert(QWidget& window, std::function<void()> dismissed,
                 std::function<void()> acted = nullptr);
    MessageAlert(const MessageAlert&) = delete;
    MessageAlert& operator=(const MessageAlert&) = delete;
    ~MessageAlert();

    /// Closes the alert if there is no message. If it already shows this message, only updates the
    /// texts.
    void show(const std::optional<std::string>& message, const Texts& texts);

private:
    bool isOpenWith(const QString& message, bool withAction) const;
    void open(const QString& message, const Texts& texts);
    void setTexts(const Texts& texts);

    QWidget& window_;
    std::function<void()> dismissed_;
    std::function<void()> acted_;
    QPointer<QMessageBox> box_;
    QPointer<QAbstractButton> ok_;     // in the box
    QPointer<QAbstractButton> action_; // the second button, if any
};

} // namespace vantoro
