// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/portal_inhibition.h"

#include <cstdint>
#include <utility>

namespace vantoro::desktop {

namespace {

constexpr std::uint32_t suspend = 4; // the portal's flag; the other flags concern the session
constexpr std::uint32_t success = 0;

} // namespace

/// May outlive the inhibition, to release it if the answer comes late.
struct PortalInhibition::Request {
    BusConnection& bus;
    QTimer* patience; ///< null once the inhibition has ended
    std::string portal;
    std::string handle; ///< empty until granted

    void answered(BusMessage& reply) {
        if (const auto granted = reply.isError() ? std::nullopt : reply.readPath()) {
            portal = reply.sender();
            handle = *granted;
        }
        if (patience == nullptr) {
            release();
        } else if (!handle.empty()) {
            patience->stop();
        } else if (patience->isActive()) {
            patience->start(0);
        }
    }

    void ended(BusMessage& response) {
        const bool isOurs =
            !handle.empty() && response.sender() == portal && response.path() == handle;
        if (isOurs && response.readNumber() != success) {
            handle.clear();
            patience->start(0);
        }
    }

    void release() const {
        if (!handle.empty()) {
            bus.call({.service = portal,
                      .path = handle,
                      .interface = "org.freedesktop.portal.Request",
                      .member = "Close"},
                     {}, [](BusMessage&) {});
        }
    }
};

PortalInhibition::PortalInhibition(BusConnection& sessionBus, const std::string& reason,
                                   std::chrono::milliseconds patience,
                                   std::function<void()> refused)
    : bus_(sessionBus),
      request_(std::make_shared<Request>(
          Request{.bus = bus_, .patience = &patience_, .portal = {}, .handle = {}})) {
    patience_.setSingleShot(true);
    QObject::connect(&patience_, &QTimer::timeout, &patience_, std::move(refused));
    const bool asked =
        bus_.call({.service = "org.freedesktop.portal.Desktop",
                   .path = "/org/freedesktop/portal/desktop",
                   .interface = "org.freedesktop.portal.Inhibit",
                   .member = "Inhibit"},
                  {"", suspend, BusOptions{{"reason", reason}}},
                  [request = request_](BusMessage& reply) { request->answered(reply); });
    patience_.start(asked ? patience : std::chrono::milliseconds(0));
}

PortalInhibition::~PortalInhibition() {
    request_->patience = nullptr;
    request_->release();
}

void PortalInhibition::heardResponse(BusMessage& response) {
    request_->ended(response);
}

} // namespace vantoro::desktop
