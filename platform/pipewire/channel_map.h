// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

struct spa_pod; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::pipewire {

/// Takes from a stream's parameters of the kind SPA_PARAM_Props which channels its application
/// gives, by their short names ("FL"). Where they do not tell, `channels` stay as they are.
void readChannelMap(std::vector<std::string>& channels, const spa_pod* properties);

} // namespace vantoro::pipewire
