// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/notifications/notification_calls.h"

#include <algorithm>
#include <utility>

namespace vantoro::desktop {

namespace {

const std::string program = "Vantoro";
const std::string applicationIcon = "com.vantoro.app"; // also the desktop entry's name

constexpr std::uint8_t normalUrgency = 1;
constexpr std::uint8_t criticalUrgency = 2;
constexpr std::int32_t usualTime = -1;
constexpr std::int32_t noEnd = 0;

bool has(const BusTexts& capabilities, const char* capability) {
    return std::ranges::find(capabilities, capability) != capabilities.end();
}

std::string withoutMarkup(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

} // namespace

BusMethod notificationMethod(std::string member) {
    return {.service = notificationService,
            .path = "/org/freedesktop/Notifications",
            .interface = notificationService,
            .member = std::move(member)};
}

BusMethod notificationPortalMethod(std::string member) {
    return {.service = notificationPortal,
            .path = "/org/freedesktop/portal/desktop",
            .interface = notificationPortalInterface,
            .member = std::move(member)};
}

std::vector<BusArgument> notifyArguments(const Notification& notification, std::uint32_t replaced,
                                         const BusTexts& capabilities) {
    BusTexts actions;
    if (has(capabilities, "actions")) { // others may show a dialog instead
        actions = {clickAction, notification.clickLabel};
        for (const auto& [key, label] : notification.actions) {
            actions.insert(actions.end(), {key, label});
        }
    }
    const auto text =
        has(capabilities, "body-markup") ? withoutMarkup(notification.text) : notification.text;
    const BusOptions hints{
        {"desktop-entry", applicationIcon},
        {"urgency", notification.isImportant ? criticalUrgency : normalUrgency},
    };
    return {program, replaced, applicationIcon, notification.title,
            text,    actions,  hints,           notification.isImportant ? noEnd : usualTime};
}

std::vector<BusArgument> portalArguments(const std::string& topic,
                                         const Notification& notification) {
    BusRecords buttons;
    for (const auto& [key, label] : notification.actions) {
        buttons.push_back({{"label", label}, {"action", key}});
    }
    return {topic, BusOptions{{"title", notification.title},
                              {"body", notification.text},
                              {"priority", notification.isImportant ? "urgent" : "normal"},
                              {"default-action", clickAction},
                              {"buttons", buttons}}};
}

} // namespace vantoro::desktop
