// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "l10n/app_language.h"

namespace vantoro {

/// The text with the arguments in place of %1, %2, …; what an argument holds is inserted unchanged.
std::string filled(std::string_view text, const std::vector<std::string>& arguments);

/// A text in both languages, UTF-8. Does not compile if one is empty, or if the two differ in their
/// places for arguments.
class BilingualText {
public:
    consteval BilingualText(std::string_view english, std::string_view chinese)
        : english_(english), chinese_(chinese) {
        if (english.empty() || chinese.empty() || places(english) != places(chinese)) {
            throw std::logic_error("The two texts do not match.");
        }
    }

    /// Any thread.
    std::string in(AppLanguage language, const std::vector<std::string>& arguments = {}) const {
        return filled(language == AppLanguage::english ? english_ : chinese_, arguments);
    }

private:
    /// How often each place occurs, in four bits for each.
    static consteval std::uint64_t places(std::string_view text) {
        std::uint64_t counts = 0;
        for (auto at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
            counts += std::uint64_t{1} << 4 * (text.at(at + 1) - '0');
        }
        return counts;
    }

    std::string_view english_;
    std::string_view chinese_;
};

} // namespace vantoro
