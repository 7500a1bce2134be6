// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vantoro {

/// The languages of the program's texts.
enum class AppLanguage : std::uint8_t { chinese, english };

/// In menu order.
inline constexpr std::array allLanguages{AppLanguage::chinese, AppLanguage::english};

/// The stored form: "zh-Hans" or "en".
std::string_view rawValue(AppLanguage language);

/// The inverse of `rawValue`; none for any other text.
std::optional<AppLanguage> languageOf(std::string_view rawValue);

/// The language's own name for itself, UTF-8; never translated, so that its speakers recognise it.
std::string_view displayName(AppLanguage language);

} // namespace vantoro
