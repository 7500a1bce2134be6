// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/bilingual_text.h"

#include <cstddef>

namespace vantoro {

/// In one go: an argument may hold what looks like a place.
std::string filled(std::string_view text, const std::vector<std::string>& arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digit = text[i] == '%' && i + 1 < text.size() ? text[i + 1] - '1' : -1;
        const auto number = static_cast<std::size_t>(digit);
        if (digit >= 0 && number < arguments.size()) {
            result += arguments[number];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace vantoro
