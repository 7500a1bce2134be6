// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <string>

namespace vantoro::testing {

/// A device that takes the place of a node while this lives: the node is destroyed and the device
/// made by two requests that the server gets at once, so that it gives the node's id to the device
/// and tells everybody of both in one go.
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
