// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/device_list.h"

#include "capture/graph/microphones.h"
#include "platform/pipewire/graph_query.h"

namespace vantoro::pipewire {

std::vector<AudioInputDevice> DeviceList::microphones() {
    const auto graph = queryGraph();
    return graph ? capture::microphones(*graph) : std::vector<AudioInputDevice>();
}

std::optional<std::string> DeviceList::defaultMicrophone() {
    const auto graph = queryGraph();
    if (!graph || !findMicrophone(*graph, graph->defaultMicrophone)) {
        return std::nullopt;
    }
    return graph->defaultMicrophone;
}

bool DeviceList::isVisible(const std::string& microphone) const {
    const auto graph = queryGraph();
    return graph && findMicrophone(*graph, microphone).has_value();
}

} // namespace vantoro::pipewire
