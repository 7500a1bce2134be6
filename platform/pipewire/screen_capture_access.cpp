#include "platform/pipewire/screen_capture_access.h"

#include "platform/pipewire/graph_query.h"

namespace vantoro::pipewire {

bool ScreenCaptureAccess::preflight() {
    const auto graph = queryGraph();
    return graph && graph->mayExecute && graph->canMakeLinks;
}

bool ScreenCaptureAccess::request() {
    return preflight();
}

} // namespace vantoro::pipewire
