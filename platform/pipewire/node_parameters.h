// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

#include "capture/graph/graph.h"

struct spa_pod; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::pipewire {

/// Updates `setting` from a node's SPA_PARAM_Props; fields that the parameters do not name stay,
/// and parameters that are not an object change nothing.
void readMixerSetting(capture::MixerSetting& setting, const spa_pod* properties);

/// Sets `channels` to the short names ("FL") of the application's own channels, from a stream's
/// SPA_PARAM_Props. Unchanged if the parameters do not name them.
void readChannelMap(std::vector<std::string>& channels, const spa_pod* properties);

} // namespace vantoro::pipewire
