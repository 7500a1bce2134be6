// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/notifications/desktop_notifications.h"

#include <utility>

#include <QtCore/QMetaObject>

#include "platform/desktop/notifications/notification_calls.h"

namespace vantoro::desktop {

namespace {

std::string ruleFor(const std::string& interface, const std::string& signal) {
    return "type='signal',interface='" + interface + "',member='" + signal + "'";
}

} // namespace

DesktopNotifications::DesktopNotifications(std::string busAddress, bool isSandboxed,
                                           std::chrono::milliseconds limit)
    : busAddress_(std::move(busAddress)), isSandboxed_(isSandboxed), limit_(limit) {}

void DesktopNotifications::show(const std::string& topic, const Notification& notification) {
    connectToBus();
    auto& shown = shown_[topic];
    shown.notification = notification;
    shown.asked = Clock::now();
    send(topic);
}

void DesktopNotifications::withdraw(const std::string& topic) {
    const auto found = shown_.find(topic);
    if (found == shown_.end()) {
        return;
    }
    if (found->second.isInPortal) {
        bus_->call(notificationPortalMethod("RemoveNotification"), {topic}, [](BusMessage&) {});
    } else if (found->second.number != 0) {
        closeInService(found->second.number);
    }
    shown_.erase(found);
}

void DesktopNotifications::connectToBus() {
    if (bus_) {
        return;
    }
    bus_ = std::make_unique<BusConnection>(busAddress_);
    listenToPortal();
    if (!isSandboxed_) {
        listenToService();
        service_ = std::make_unique<ServiceOwner>(*bus_, notificationService,
                                                  [this] { serviceChanged(); });
    }
}

void DesktopNotifications::listenToService() {
    const auto listen = [this](const char* signal, auto heard) {
        bus_->listen(ruleFor(notificationService, signal), [this, heard](BusMessage& message) {
            const auto number = message.readNumber();
            const auto topic = number ? topicOf(*number) : std::nullopt;
            if (topic && message.sender() == service_->name()) {
                heard(*topic, message);
            }
        });
    };
    listen("ActivationToken", [this](const std::string&, BusMessage& message) {
        activationToken_ = message.readText().value_or("");
    });
    listen("ActionInvoked", [this](const std::string& topic, BusMessage& message) {
        tellOfChoice(topic, message.readText().value_or(""));
    });
    listen("NotificationClosed",
           [this](const std::string& topic, BusMessage&) { shown_.erase(topic); });
}

void DesktopNotifications::listenToPortal() {
    // The portal sends this only to the program that the notification is from.
    bus_->listen(ruleFor(notificationPortalInterface, "ActionInvoked"), [this](BusMessage& signal) {
        const auto topic = signal.readText().value_or("");
        const auto found = shown_.find(topic);
        if (found != shown_.end() && found->second.isInPortal) {
            tellOfChoice(topic, signal.readText().value_or(""));
        }
    });
}

void DesktopNotifications::send(const std::string& topic) {
    auto& shown = shown_.at(topic);
    const int attempt = ++shown.attempt;
    shown.isPending = true;
    if (isSandboxed_) {
        sendToPortal(topic, attempt);
        return;
    }
    bus_->call(notificationMethod("GetCapabilities"), {}, [=, this](BusMessage& reply) {
        if (reply.isError()) {
            sendToPortal(topic, attempt);
        } else {
            sendToService(topic, attempt, reply.readTexts().value_or(BusTexts()));
        }
    });
}

void DesktopNotifications::sendToService(const std::string& topic, int attempt,
                                         const BusTexts& capabilities) {
    const auto* const shown = awaited(topic, attempt);
    if (shown == nullptr) {
        return;
    }
    bus_->call(notificationMethod("Notify"),
               notifyArguments(shown->notification, shown->number, capabilities),
               [=, this](BusMessage& reply) {
                   const auto number = reply.isError() ? std::nullopt : reply.readNumber();
                   const auto found = shown_.find(topic);
                   if (found != shown_.end()) { // a later attempt replaces this one
                       found->second.number = number.value_or(0);
                       found->second.isPending = found->second.attempt != attempt;
                   } else if (number) {
                       closeInService(*number);
                   }
               });
}

void DesktopNotifications::sendToPortal(const std::string& topic, int attempt) {
    const auto* const shown = awaited(topic, attempt);
    if (shown == nullptr) {
        return;
    }
    bus_->call(notificationPortalMethod("AddNotification"),
               portalArguments(topic, shown->notification), [=, this](BusMessage& reply) {
                   if (auto* const sent = awaited(topic, attempt)) {
                       sent->isInPortal = !reply.isError();
                       sent->isPending = false;
                   }
               });
}

/// A service that starts anew knows nothing of what its predecessor showed.
void DesktopNotifications::serviceChanged() {
    std::erase_if(shown_, [](const auto& one) {
        const auto& shown = one.second;
        return !shown.isPending && !shown.isInPortal && !shown.notification.isImportant;
    });
    const bool runs = !service_->name().value_or("").empty();
    for (auto& [topic, shown] : shown_) {
        shown.number = 0;
        if (runs && !shown.isInPortal) {
            send(topic);
        }
    }
}

DesktopNotifications::Shown* DesktopNotifications::awaited(const std::string& topic, int attempt) {
    const auto found = shown_.find(topic);
    if (found == shown_.end() || found->second.attempt != attempt) {
        return nullptr;
    }
    const auto& shown = found->second;
    if (!shown.notification.isImportant && Clock::now() - shown.asked > limit_) {
        shown_.erase(found);
        return nullptr;
    }
    return &found->second;
}

void DesktopNotifications::closeInService(std::uint32_t number) {
    bus_->call(notificationMethod("CloseNotification"), {number}, [](BusMessage&) {});
}

std::optional<std::string> DesktopNotifications::topicOf(std::uint32_t number) const {
    for (const auto& [topic, shown] : shown_) {
        if (shown.number == number && !shown.isInPortal) {
            return topic;
        }
    }
    return std::nullopt;
}

/// Not within the bus's callback: what follows may end this.
void DesktopNotifications::tellOfChoice(const std::string& topic, const std::string& action) {
    QMetaObject::invokeMethod(
        &events_,
        [chosen = chosen_, topic, action = action == clickAction ? std::string() : action,
         token = std::exchange(activationToken_, {})] {
            if (chosen) {
                chosen(topic, action, token);
            }
        },
        Qt::QueuedConnection);
}

} // namespace vantoro::desktop
