// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QMessageBox>

namespace vantoro {

/// A message over the window, shown for as long as there is one. Main thread.
class MessageAlert {
public:
    struct Texts {
        QString title;
        QString ok;
        QString action; ///< on a further button; empty for none
    };

    /// `dismissed` is told when the user has read it, in whatever way it was closed, and `acted`
    /// before that when it was by the further button.
    MessageAlert(QWidget& window, std::function<void()> dismissed,
                 std::function<void()> acted = nullptr);
    MessageAlert(const MessageAlert&) = delete;
    MessageAlert& operator=(const MessageAlert&) = delete;
    ~MessageAlert();

    /// Takes an open one away where there is no message any more. One that is open already with
    /// this message stays, in these texts.
    void show(const std::optional<std::string>& message, const Texts& texts);

private:
    bool isOpenWith(const QString& message, bool withAction) const;
    void open(const QString& message, bool withAction);
    void setTexts(const Texts& texts);

    QWidget& window_;
    std::function<void()> dismissed_;
    std::function<void()> acted_;
    QPointer<QMessageBox> box_;
    QPointer<QAbstractButton> ok_;     // of the box
    QPointer<QAbstractButton> action_; // ... where it has that one
};

} // namespace vantoro
