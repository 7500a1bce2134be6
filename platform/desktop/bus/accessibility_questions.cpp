// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/accessibility_questions.h"

#include <utility>

namespace vantoro::desktop {

namespace {

constexpr const char* accessibilityService = "org.a11y.Bus";
constexpr const char* accessibilityPath = "/org/a11y/bus";

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
    if (settings_.isAlwaysOn) {
        askForAddress();
    } else {
        askWhetherWanted();
    }
}

void AccessibilityQuestions::ask(const BusMethod& method, const std::vector<BusArgument>& arguments,
                                 BusReceive answered) {
    isOver_ = !session_->ask(method, arguments, std::move(answered)) || isOver_;
}

/// Services answer calls in order: the last answer implies the others.
void AccessibilityQuestions::askWhetherWanted() {
    const std::string status = "org.a11y.Status";
    const auto isWanted = [](BusMessage& reply) {
        return !reply.isError() && reply.readFlagInVariant().value_or(false);
    };
    const auto hasReader = std::make_shared<bool>(false);
    const auto reading = propertyReading(accessibilityService, accessibilityPath);
    ask(reading, {status, "ScreenReaderEnabled"},
        [hasReader, isWanted](BusMessage& reply) { *hasReader = isWanted(reply); });
    ask(reading, {status, "IsEnabled"}, [this, hasReader, isWanted](BusMessage& reply) {
        if (isWanted(reply) || *hasReader) {
            askForAddress();
        } else {
            isOver_ = true;
        }
    });
}

void AccessibilityQuestions::askForAddress() {
    ask({.service = accessibilityService,
         .path = accessibilityPath,
         .interface = accessibilityService,
         .member = "GetAddress",
         .startsService = false},
        {}, [this](BusMessage& reply) {
            const auto address = reply.isError() ? std::nullopt : reply.readText();
            if (address) {
                connect(*address);
            } else {
                isOver_ = true;
            }
        });
}

/// The toolkit asks the registry the same.
void AccessibilityQuestions::connect(const std::string& address) {
    bus_.emplace(address, nullptr,
                 BusMethod{.service = "org.a11y.atspi.Registry",
                           .path = "/org/a11y/atspi/registry",
                           .interface = "org.a11y.atspi.Registry",
                           .member = "GetRegisteredEvents"});
}

} // namespace vantoro::desktop
