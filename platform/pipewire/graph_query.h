// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>

#include "platform/pipewire/graph.h"

namespace vantoro::pipewire {

/// The sound server's objects at this moment; nothing when it is not there, or has not answered
/// within the limit. Connects anew each time. Task threads, and the main thread.
std::optional<Graph> queryGraph(std::chrono::seconds limit = std::chrono::seconds(2));

} // namespace vantoro::pipewire
