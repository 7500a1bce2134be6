// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/ports/status_area.h"

namespace vantoro {

/// The status area as the toolkit knows it: the older one of X servers, say. It is available while
/// somebody shows icons in it, of which nobody tells: whoever wants to know asks. Main thread, of a
/// program with windows.
class TrayIconArea final : public StatusArea {
public:
    /// The toolkit knows no identifiers.
    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override;

    /// Always known. Asking may take as long as the desktop's bus takes to answer.
    std::optional<bool> isAvailable() const override;

    /// It is never called.
    void setAvailabilityChanged(std::function<void()> /*changed*/) override {}
};

} // namespace vantoro
