// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

/// The text with the arguments in place of %1, %2, …; what an argument holds is inserted unchanged.
std::string filled(std::string_view text, const std::vector<std::string>& arguments);

} // namespace vantoro
