// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <string>

namespace vantoro::testing {

/// A device that replaces a node while this object lives. The server receives the requests to
/// destroy the node and to create the device together, so that it reuses the node's id and
/// announces both at once.
class DeviceInPlace {
public:
    /// Returns once the device is there.
    DeviceInPlace(const std::string& replacedNode, const std::string& name,
                  const std::string& mediaClass, const std::string& positions);
    DeviceInPlace(const DeviceInPlace&) = delete;
    DeviceInPlace& operator=(const DeviceInPlace&) = delete;
    ~DeviceInPlace();

    /// Whether the device has the id that the node had.
    bool hasTakenTheId() const noexcept { return hasTakenTheId_; }

private:
    class Maker;
    std::unique_ptr<Maker> maker_;
    bool hasTakenTheId_ = false;
};

} // namespace vantoro::testing
