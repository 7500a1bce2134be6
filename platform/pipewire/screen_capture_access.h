// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/permissions.h"

namespace vantoro::pipewire {

/// Allowed when the sound server can be reached, answers within 2 seconds, and lets us use it and
/// make links. No desktop has a dialog for this permission: to request it is to look again.
class ScreenCaptureAccess final : public vantoro::ScreenCaptureAccess {
public:
    bool preflight() override;
    bool request() override;
};

} // namespace vantoro::pipewire
