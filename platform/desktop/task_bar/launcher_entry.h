// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"
#include "ui/ports/task_bar_entry.h"

namespace vantoro::desktop {

/// Tells task bars over the session bus, to which it connects for the first progress
/// (com.canonical.Unity.LauncherEntry). Main thread.
class LauncherEntry final : public TaskBarEntry {
public:
    /// Address of the session bus; empty for none.
    explicit LauncherEntry(std::string busAddress) : busAddress_(std::move(busAddress)) {}

    void setProgress(std::optional<double> fraction) override;

private:
    std::string busAddress_;
    std::optional<double> fraction_;
    std::unique_ptr<BusConnection> bus_; ///< from the first progress on
};

} // namespace vantoro::desktop
