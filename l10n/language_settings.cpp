// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/language_settings.h"

#include <string>

#include "l10n/l10n.h"

namespace vantoro {

LanguageSettings::LanguageSettings(Preferences& preferences)
    : preferences_(preferences), language_(L10n(preferences).language()) {}

void LanguageSettings::setLanguage(AppLanguage language) {
    language_ = language;
    preferences_.set(Preference::appLanguage, std::string(rawValue(language)));
    Q_EMIT languageChanged();
}

} // namespace vantoro
