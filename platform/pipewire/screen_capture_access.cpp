// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/screen_capture_access.h"

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/graph_query.h"

namespace vantoro::pipewire {

bool ScreenCaptureAccess::preflight() {
    const auto graph = queryGraph();
    return graph && mayCapture(*graph);
}

bool ScreenCaptureAccess::request() {
    return preflight();
}

} // namespace vantoro::pipewire
