// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/instance/application_instance.h"

#include <functional>
#include <utility>

#include <QtCore/QMetaObject>
#include <QtCore/QTimer>
#include <QtCore/QtGlobal>

namespace vantoro::desktop {

namespace {

const BusObject applicationObject{.path = "/com/vantoro/app",
                                  .interface = "org.freedesktop.Application"};

} // namespace

template <class Value>
void ApplicationInstance::Answer<Value>::await(std::chrono::milliseconds patience, Value otherwise,
                                               std::function<void(Value)> callback) {
    callback_ = std::move(callback);
    if (value_) {
        set(*value_);
    }
    QTimer::singleShot(patience, &events_, [this, otherwise] { set(otherwise); });
}

/// Not within the call: the callback may destroy this.
template <class Value>
void ApplicationInstance::Answer<Value>::set(Value value) {
    value_ = value_.value_or(value);
    QMetaObject::invokeMethod(
        &events_,
        [this] {
            if (const auto callback = std::exchange(callback_, nullptr)) {
                callback(*value_);
            }
        },
        Qt::QueuedConnection);
}

ApplicationInstance::ApplicationInstance(const std::string& busAddress) : bus_(busAddress) {
    // Not within the bus's callback: handling it may take a while.
    received_ = [this](const ApplicationRequest& request) {
        pending_.push_back(request);
        QMetaObject::invokeMethod(&events_, [this] { deliverRequests(); }, Qt::QueuedConnection);
    };
    const bool asked =
        bus_.exportObject(applicationObject, applicationTable(), &received_) &&
        bus_.requestName(applicationID, [this](std::optional<bool> isOurs) {
            role_.set(!isOurs ? Role::unknown : *isOurs ? Role::first : Role::another);
        });
    if (!asked) {
        role_.set(Role::first);
    }
}

void ApplicationInstance::whenRoleIsKnown(std::chrono::milliseconds patience,
                                          std::function<void(Role role)> known) {
    role_.await(patience, Role::unknown, std::move(known));
}

void ApplicationInstance::setRequested(TakeRequest requested) {
    requested_ = std::move(requested);
    QMetaObject::invokeMethod(&events_, [this] { deliverRequests(); }, Qt::QueuedConnection);
}

void ApplicationInstance::deliverRequests() {
    if (requested_) {
        for (const auto& request : std::exchange(pending_, {})) {
            requested_(request);
        }
    }
}

void ApplicationInstance::activateFirst(const std::string& activationToken,
                                        std::chrono::milliseconds patience,
                                        std::function<void(bool isShown)> answered) {
    // The older key is the one for X11.
    const BusOptions options = {{"activation-token", activationToken},
                                {"desktop-startup-id", activationToken}};
    isShown_ = std::make_shared<Answer<bool>>();
    const bool asked =
        bus_.call({.service = applicationID,
                   .path = applicationObject.path,
                   .interface = applicationObject.interface,
                   .member = "Activate"},
                  {activationToken.empty() ? BusOptions() : options},
                  [isShown = isShown_](BusMessage& reply) { isShown->set(!reply.isError()); });
    if (!asked) {
        isShown_->set(false);
    }
    isShown_->await(patience, false, std::move(answered));
}

std::string activationTokenOfThisStart() {
    const auto token = qgetenv("XDG_ACTIVATION_TOKEN");
    return (token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token).toStdString();
}

} // namespace vantoro::desktop
