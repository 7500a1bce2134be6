// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/ports/status_area.h"

namespace vantoro {

/// The toolkit's status area, such as the older one of X servers. Main thread of a program with
/// windows.
class TrayIconArea final : public StatusArea {
public:
    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override;

    /// Never empty. May block for as long as the session bus takes to answer.
    std::optional<bool> isAvailable() const override;

    /// Never called: poll.
    void setAvailabilityChanged(std::function<void()> /*changed*/) override {}
};

} // namespace vantoro
