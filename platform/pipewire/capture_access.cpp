// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_access.h"

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/graph_query.h"

namespace vantoro::pipewire {

bool CaptureAccess::isGranted() {
    const auto graph = queryGraph();
    return graph && mayCapture(*graph);
}

} // namespace vantoro::pipewire
