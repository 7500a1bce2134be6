// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vantoro {

/// The languages that the program speaks.
enum class AppLanguage : std::uint8_t { chinese, english };

/// In the order in which the user is offered them.
inline constexpr std::array allLanguages{AppLanguage::chinese, AppLanguage::english};

/// What is stored to mean the language: "zh-Hans" or "en".
std::string_view rawValue(AppLanguage language);

/// The language that `rawValue` gives exactly this text for; none for any other text.
std::optional<AppLanguage> languageOf(std::string_view rawValue);

/// The language's name in itself, UTF-8: never translated, so that everybody finds their own.
std::string_view displayName(AppLanguage language);

} // namespace vantoro
