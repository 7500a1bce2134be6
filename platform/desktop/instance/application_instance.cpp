// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/instance/application_instance.h"

#include <functional>
#include <utility>

#include <QtCore/QEventLoop>
#include <QtCore/QMetaObject>
#include <QtCore/QTimer>
#include <QtCore/QtGlobal>

namespace vantoro::desktop {

namespace {

const BusObject applicationObject{.path = "/com/vantoro/app", .interface = applicationInterface};

// How the bus is asked for a name, and what it says to one that is given.
constexpr std::uint32_t doNotQueue = 4;
constexpr std::uint32_t nowOurs = 1;

/// Lets the event loop run until `isDone`, which events decide, or the time is over.
void runUntil(const std::function<bool()>& isDone, std::chrono::milliseconds patience) {
    bool isOver = false;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, [&] { isOver = true; });
    deadline.start(patience);
    QEventLoop loop;
    while (!isDone() && !isOver) {
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace

ApplicationInstance::ApplicationInstance(const std::string& busAddress) : bus_(busAddress) {
    // Not within the bus's call: what is done about it may take a while.
    object_.requested = [this](const ApplicationRequest& request) {
        waiting_.push_back(request);
        QMetaObject::invokeMethod(&events_, [this] { tellRequests(); }, Qt::QueuedConnection);
    };
    const bool asked =
        bus_.offer(applicationObject, applicationTable(), &object_) &&
        bus_.call(
            {.service = "org.freedesktop.DBus",
             .path = "/org/freedesktop/DBus",
             .interface = "org.freedesktop.DBus",
             .member = "RequestName"},
            {std::string(applicationID), doNotQueue}, [this](BusMessage& reply) {
                const auto answer = reply.isError() ? std::nullopt : reply.readNumber();
                role_ = !answer ? Role::unknown : answer == nowOurs ? Role::first : Role::another;
            });
    if (!asked) {
        role_ = Role::first;
    }
}

ApplicationInstance::Role ApplicationInstance::awaitRole(std::chrono::milliseconds patience) {
    runUntil([this] { return role_.has_value(); }, patience);
    return role_.value_or(Role::unknown);
}

void ApplicationInstance::setRequested(
    std::function<void(const ApplicationRequest& request)> requested) {
    requested_ = std::move(requested);
    QMetaObject::invokeMethod(&events_, [this] { tellRequests(); }, Qt::QueuedConnection);
}

void ApplicationInstance::tellRequests() {
    if (requested_) {
        for (const auto& request : std::exchange(waiting_, {})) {
            requested_(request);
        }
    }
}

bool ApplicationInstance::activateFirst(const std::string& activationToken,
                                        std::chrono::milliseconds patience) {
    // The older name is the one that X servers' window managers know.
    const BusOptions options = {{"activation-token", activationToken},
                                {"desktop-startup-id", activationToken}};
    answer_.reset();
    const bool asked = bus_.call({.service = applicationID,
                                  .path = applicationObject.path,
                                  .interface = applicationInterface,
                                  .member = "Activate"},
                                 {activationToken.empty() ? BusOptions() : options},
                                 [this](BusMessage& reply) { answer_ = !reply.isError(); });
    if (asked) {
        runUntil([this] { return answer_.has_value(); }, patience);
    }
    return answer_.value_or(false);
}

std::string activationTokenOfThisStart() {
    const auto token = qgetenv("XDG_ACTIVATION_TOKEN");
    return (token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token).toStdString();
}

} // namespace vantoro::desktop
