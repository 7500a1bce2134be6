// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <QtCore/QObject>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "ui/ports/notifications.h"

namespace vantoro::desktop {

/// Shows notifications through the desktop's service, or the portal in a sandbox and where there is
/// no service. Connects to the bus for the first one. Main thread.
class DesktopNotifications final : public Notifications {
public:
    /// A service that answers later than this has missed a notification that is not important.
    static constexpr std::chrono::milliseconds answerLimit = std::chrono::seconds(10);

    /// Address of the session bus; empty for none.
    DesktopNotifications(std::string busAddress, bool isSandboxed,
                         std::chrono::milliseconds limit = answerLimit);

    void setChosen(Chosen chosen) override { chosen_ = std::move(chosen); }

    void show(const std::string& topic, const Notification& notification) override;
    void withdraw(const std::string& topic) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Shown {
        Notification notification;
        Clock::time_point asked;
        int attempt = 0;       ///< counts; answers to earlier ones do not matter
        bool isPending = true; ///< the latest attempt has no answer yet
        bool isInPortal = false;
        std::uint32_t number = 0; ///< of the service; 0 until it answers
    };

    void connectToBus();
    void listenToService();
    void listenToPortal();
    void send(const std::string& topic);
    void sendToService(const std::string& topic, int attempt, const BusTexts& capabilities);
    void sendToPortal(const std::string& topic, int attempt);
    void serviceChanged();
    /// Null if it was withdrawn or sent again, or is not worth showing any more.
    Shown* awaited(const std::string& topic, int attempt);
    void closeInService(std::uint32_t number);
    std::optional<std::string> topicOf(std::uint32_t number) const;
    void tellOfChoice(const std::string& topic, const std::string& action);

    std::string busAddress_;
    bool isSandboxed_;
    std::chrono::milliseconds limit_;
    Chosen chosen_;
    std::map<std::string, Shown> shown_;    ///< by topic
    std::string activationToken_;           ///< for the next choice
    QObject events_;                        ///< cancels pending callbacks on destruction
    std::unique_ptr<BusConnection> bus_;    ///< from the first notification on
    std::unique_ptr<ServiceOwner> service_; ///< likewise; none in a sandbox
};

} // namespace vantoro::desktop
