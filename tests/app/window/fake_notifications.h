// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <string>
#include <utility>

#include "ui/ports/notifications.h"

namespace vantoro::testing {

/// Keeps what is shown; the test plays the user.
class FakeNotifications final : public Notifications {
public:
    void setChosen(Chosen function) override { chosen = std::move(function); }

    void show(const std::string& topic, const Notification& notification) override {
        shown[topic] = notification;
        ++shows;
    }

    void withdraw(const std::string& topic) override { shown.erase(topic); }

    Chosen chosen;
    std::map<std::string, Notification> shown; ///< by topic
    int shows = 0;
};

} // namespace vantoro::testing
