// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/power_management.h"

#include <map>
#include <set>
#include <utility>

#include <QtCore/QByteArray>
#include <QtCore/QMetaObject>
#include <QtCore/QObject>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/power/logind.h"
#include "platform/desktop/power/portal_inhibition.h"

namespace vantoro::desktop {

/// Shared by all observations and holds; the last one destroys it.
struct DesktopPowerManagement::Services {
    explicit Services(const BusAddresses& buses)
        : systemBus(buses.system),
          sessionBus(buses.session),
          logind(
              systemBus, [this](bool sleeping) { notify(sleeping); },
              [this](bool shuttingDown) {
                  if (shuttingDown) { // cancelled, so there is nothing to do
                      notify(true);
                  }
              }) {
        sessionBus.listen(portalResponse, [this](BusMessage& response) {
            for (auto* const portal : portals) {
                portal->heardResponse(response);
            }
        });
    }

    void notify(bool sleeping) {
        for (const auto& [observation, tell] : observations) {
            tell(sleeping);
        }
    }

    BusConnection systemBus;
    BusConnection sessionBus;
    std::map<const PowerObservation*, std::function<void(bool sleeping)>> observations;
    std::set<PortalInhibition*> portals;
    Logind logind;
};

/// Runs callbacks from the event loop, since each may destroy everything, this included.
class DesktopPowerManagement::Observation final : public PowerObservation {
public:
    Observation(std::shared_ptr<Services> services, std::function<void()> willSleep,
                std::function<void()> didWake)
        : services_(std::move(services)) {
        services_->observations.emplace(this, [this, willSleep, didWake](bool sleeping) {
            QMetaObject::invokeMethod(&observed_, sleeping ? willSleep : didWake,
                                      Qt::QueuedConnection);
        });
    }

    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

    ~Observation() override { services_->observations.erase(this); }

private:
    std::shared_ptr<Services> services_;
    QObject observed_; // cancels pending callbacks on destruction
};

class DesktopPowerManagement::Hold final : public SleepHold {
public:
    Hold(std::shared_ptr<Services> services, const std::string& reason,
         std::chrono::milliseconds portalPatience)
        : services_(std::move(services)),
          sleep_(services_->logind.inhibit("sleep", reason, "delay")),
          shutdown_(services_->logind.inhibit("shutdown", reason, "delay")),
          portal_(services_->sessionBus, reason, portalPatience,
                  [this, reason] { idle_ = services_->logind.inhibit("idle", reason, "block"); }) {
        services_->portals.insert(&portal_);
    }

    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

    ~Hold() override { services_->portals.erase(&portal_); }

private:
    std::shared_ptr<Services> services_;
    std::shared_ptr<LogindInhibitor> sleep_;
    // A lock of its own: a user may be allowed only one of the two.
    std::shared_ptr<LogindInhibitor> shutdown_;
    std::shared_ptr<LogindInhibitor> idle_; // the fallback if the portal refuses
    PortalInhibition portal_;
};

DesktopPowerManagement::DesktopPowerManagement(const BusAddresses& buses,
                                               std::chrono::milliseconds portalPatience)
    : services_(std::make_shared<Services>(buses)), portalPatience_(portalPatience) {}

std::unique_ptr<PowerObservation> DesktopPowerManagement::observe(std::function<void()> willSleep,
                                                                  std::function<void()> didWake) {
    return std::make_unique<Observation>(services_, std::move(willSleep), std::move(didWake));
}

std::unique_ptr<SleepHold> DesktopPowerManagement::holdOffSleep(const std::string& reason) {
    return std::make_unique<Hold>(services_, reason, portalPatience_);
}

} // namespace vantoro::desktop
