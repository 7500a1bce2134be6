// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vantoro {

/// A button.
struct NotificationAction {
    std::string key;
    std::string label;

    friend bool operator==(const NotificationAction&, const NotificationAction&) = default;
};

/// Plain text for a user who does not see the window.
struct Notification {
    std::string title;
    std::string text;
    std::string clickLabel; ///< of a click on it, where the desktop shows that as a button
    std::vector<NotificationAction> actions;
    /// Stays until the user has read it, even if the desktop's service starts anew.
    bool isImportant = false;

    friend bool operator==(const Notification&, const Notification&) = default;
};

/// The desktop's notifications; nothing happens where it has none. Main thread; never waits for the
/// desktop.
class Notifications {
public:
    /// `action` is the key of a button, or empty for the notification itself. Some desktops need
    /// the token to bring a window to the front; empty if there is none.
    using Chosen = std::function<void(const std::string& topic, const std::string& action,
                                      const std::string& activationToken)>;

    virtual ~Notifications() = default;

    /// Called by the event loop, never within a call.
    virtual void setChosen(Chosen chosen) = 0;
    /// Replaces the one with this topic.
    virtual void show(const std::string& topic, const Notification& notification) = 0;
    virtual void withdraw(const std::string& topic) = 0;
};

} // namespace vantoro
