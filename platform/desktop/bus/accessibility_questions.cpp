// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/accessibility_questions.h"

#include <utility>

namespace vantoro::desktop {

namespace {

constexpr const char* accessibilityService = "org.a11y.Bus";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

} // namespace

AccessibilityQuestions::AccessibilityQuestions(AccessibilitySettings settings)
    : settings_(std::move(settings)) {
    if (!settings_.address.empty()) {
        connect(settings_.address);
    }
}

void AccessibilityQuestions::begin(AskedBus& session) {
    if (bus_) {
        return;
    }
    session_ = &session;
    const bool asked = session.ask({.service = "org.freedesktop.DBus",
                                    .path = "/org/freedesktop/DBus",
                                    .interface = "org.freedesktop.DBus",
                                    .member = "NameHasOwner"},
                                   {std::string(accessibilityService)}, [this](BusMessage& reply) {
                                       if (!reply.readFlag().value_or(false)) {
                                           isOver_ = true;
                                       } else if (settings_.isAlwaysOn) {
                                           askForAddress();
                                       } else {
                                           askWhetherWanted();
                                       }
                                   });
    isOver_ = !asked;
}

void AccessibilityQuestions::ask(const char* interface, const char* member,
                                 const std::vector<BusArgument>& arguments, BusReceive answered) {
    const bool asked = session_->ask({.service = accessibilityService,
                                      .path = "/org/a11y/bus",
                                      .interface = interface,
                                      .member = member},
                                     arguments, std::move(answered));
    isOver_ = isOver_ || !asked;
}

/// A service serves calls in their order: the last answer comes behind the first.
void AccessibilityQuestions::askWhetherWanted() {
    const std::string status = "org.a11y.Status";
    const auto isWanted = [](BusMessage& reply) {
        return !reply.isError() && reply.readFlagInVariant().value_or(false);
    };
    const auto hasReader = std::make_shared<bool>(false);
    ask(properties, "Get", {status, std::string("ScreenReaderEnabled")},
        [hasReader, isWanted](BusMessage& reply) { *hasReader = isWanted(reply); });
    ask(properties, "Get", {status, std::string("IsEnabled")},
        [this, hasReader, isWanted](BusMessage& reply) {
            if (isWanted(reply) || *hasReader) {
                askForAddress();
            } else {
                isOver_ = true;
            }
        });
}

void AccessibilityQuestions::askForAddress() {
    ask(accessibilityService, "GetAddress", {}, [this](BusMessage& reply) {
        const auto address = reply.isError() ? std::nullopt : reply.readText();
        if (address) {
            connect(*address);
        } else {
            isOver_ = true;
        }
    });
}

/// What the toolkit asks there as well.
void AccessibilityQuestions::connect(const std::string& address) {
    bus_.emplace(address, BusMethod{.service = "org.a11y.atspi.Registry",
                                    .path = "/org/a11y/atspi/registry",
                                    .interface = "org.a11y.atspi.Registry",
                                    .member = "GetRegisteredEvents"});
}

} // namespace vantoro::desktop
