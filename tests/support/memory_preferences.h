// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <utility>
#include <vector>

#include "l10n/preferences.h"

namespace vantoro::testing {

/// Preferences that nothing keeps, and that remember what was stored in them, in order.
class MemoryPreferences final : public Preferences {
public:
    std::map<Preference, std::string> values;
    std::vector<std::pair<Preference, std::string>> stored;
    mutable int readings = 0;

    std::optional<std::string> get(Preference preference) const override {
        ++readings;
        const auto found = values.find(preference);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }

    void set(Preference preference, const std::string& value) override {
        values[preference] = value;
        stored.emplace_back(preference, value);
    }
};

/// As when that language had been chosen in an earlier run.
inline MemoryPreferences preferencesIn(const std::string& language) {
    MemoryPreferences preferences;
    preferences.values[Preference::appLanguage] = language;
    return preferences;
}

} // namespace vantoro::testing
