// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/permissions.h"

namespace vantoro::pipewire {

/// Allowed when the sound server can be reached, answers within 2 seconds, and lets us use it and
/// make links. No desktop has a dialog for this permission.
class CaptureAccess final : public vantoro::CaptureAccess {
public:
    bool isGranted() override;
};

} // namespace vantoro::pipewire
