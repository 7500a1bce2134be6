// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/instance/application_instance.h"

#include <functional>
#include <string_view>
#include <utility>

#include <QtCore/QMetaObject>
#include <QtCore/QTimer>
#include <QtCore/QtGlobal>

#include <systemd/sd-bus.h>

#include "platform/desktop/bus/activation_token.h"

namespace vantoro::desktop {

namespace {

int take(sd_bus_message* call, void* argument, std::optional<ApplicationAction> action) {
    ApplicationRequest request{.action = action, .activationToken = {}};
    if (const int read = readActivationToken(call, request.activationToken); read < 0) {
        return read;
    }
    (*static_cast<TakeRequest*>(argument))(request);
    return sd_bus_reply_method_return(call, nullptr);
}

int activate(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    return take(call, argument, std::nullopt);
}

/// The program opens no documents, so this only shows the window.
int open(sd_bus_message* call, void* argument, sd_bus_error* error) {
    const int skipped = sd_bus_message_skip(call, "as");
    return skipped < 0 ? skipped : activate(call, argument, error);
}

/// The names are those in the desktop entry.
std::optional<ApplicationAction> actionOf(std::string_view name) {
    if (name == "start-recording") {
        return ApplicationAction::startRecording;
    }
    if (name == "stop-recording") {
        return ApplicationAction::stopRecording;
    }
    return std::nullopt;
}

int activateAction(sd_bus_message* call, void* argument, sd_bus_error* error) {
    const char* name = nullptr;
    if (const int read = sd_bus_message_read(call, "s", &name); read < 0) {
        return read;
    }
    const auto action = actionOf(name);
    if (!action) {
        return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "there is no action \"%s\"",
                                 name);
    }
    // No action has parameters.
    const int skipped = sd_bus_message_skip(call, "av");
    return skipped < 0 ? skipped : take(call, argument, action);
}

/// Checking the caller would block the main thread, and everybody on the session bus is the user.
constexpr auto anybody = SD_BUS_VTABLE_UNPRIVILEGED;

const sd_bus_vtable table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", activate, anybody),
    SD_BUS_METHOD("Open", "asa{sv}", "", open, anybody),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", activateAction, anybody),
    SD_BUS_VTABLE_END,
};

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
        bus_.exportObject(applicationObject, table, &received_) &&
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
                                        std::function<void(FirstAnswer answer)> answered) {
    // The older key is the one for X11.
    const BusOptions options = {{"activation-token", activationToken},
                                {"desktop-startup-id", activationToken}};
    firstAnswer_ = std::make_shared<Answer<FirstAnswer>>();
    const bool asked =
        bus_.call({.service = applicationID,
                   .path = applicationObject.path,
                   .interface = applicationObject.interface,
                   .member = "Activate"},
                  {activationToken.empty() ? BusOptions() : options},
                  [answer = firstAnswer_](BusMessage& reply) {
                      answer->set(!reply.isError()             ? FirstAnswer::windowShown
                                  : reply.saysReceiverIsGone() ? FirstAnswer::hasEnded
                                                               : FirstAnswer::none);
                  });
    if (!asked) {
        firstAnswer_->set(FirstAnswer::none);
    }
    firstAnswer_->await(patience, FirstAnswer::none, std::move(answered));
}

std::string activationTokenOfThisStart() {
    const auto token = qgetenv("XDG_ACTIVATION_TOKEN");
    return (token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token).toStdString();
}

} // namespace vantoro::desktop
