// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

#include "platform/desktop/bus/asked_bus.h"

namespace vantoro::desktop {

/// A question to a service, which is put to it if it is there; it is not started. Any answer will
/// do, an error too. Threads as for `AskedBus`.
class AskedService {
public:
    AskedService(BusMethod question, std::vector<BusArgument> arguments);
    AskedService(const AskedService&) = delete;
    AskedService& operator=(const AskedService&) = delete;
    ~AskedService() = default;

    /// The bus, which outlives this, can be asked now.
    void begin(AskedBus& bus);

    /// Whether the service has answered, or is not there. It is not known of a bus that is gone.
    bool isSettled() const { return isSettled_; }

private:
    void askService();

    BusMethod question_;
    std::vector<BusArgument> arguments_;
    AskedBus* bus_ = nullptr;
    bool isSettled_ = false;
};

} // namespace vantoro::desktop
