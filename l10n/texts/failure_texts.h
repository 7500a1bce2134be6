// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "engine/failure.h"

namespace vantoro {

// What `what()` says in English, as a sentence in Chinese. Any thread.

std::string chineseText(const Failure& failure);
std::string chineseText(const FileFailure& failure);

} // namespace vantoro
