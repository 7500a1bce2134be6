// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

#include "capture/graph/mixer_setting.h"

struct spa_pod; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::pipewire {

/// Takes from a node's parameters of the kind SPA_PARAM_Props what a `MixerSetting` holds; what
/// they do not name stays as it is, and parameters that are no object name nothing.
void readMixerSetting(capture::MixerSetting& setting, const spa_pod* properties);

/// Takes from a stream's parameters of the kind SPA_PARAM_Props which channels its application
/// gives, by their short names ("FL"). Where they do not tell, `channels` stay as they are.
void readChannelMap(std::vector<std::string>& channels, const spa_pod* properties);

} // namespace vantoro::pipewire
