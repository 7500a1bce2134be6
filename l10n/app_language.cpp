// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/app_language.h"

namespace vantoro {

std::string_view rawValue(AppLanguage language) {
    return language == AppLanguage::english ? "en" : "zh-Hans";
}

std::optional<AppLanguage> languageOf(std::string_view rawValue) {
    for (const auto language : allLanguages) {
        if (vantoro::rawValue(language) == rawValue) {
            return language;
        }
    }
    return std::nullopt;
}

std::string_view displayName(AppLanguage language) {
    return language == AppLanguage::english ? "English" : "中文";
}

} // namespace vantoro
