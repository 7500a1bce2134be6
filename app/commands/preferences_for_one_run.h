// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <string>

#include "l10n/preferences.h"

namespace vantoro {

/// Overrides some of the user's preferences for one run. Nothing set here is stored. Main thread.
class PreferencesForOneRun final : public Preferences {
public:
    /// `users` must outlive this.
    explicit PreferencesForOneRun(const Preferences& users) : users_(users) {}

    std::optional<std::string> get(Preference preference) const override {
        const auto found = ofThisRun_.find(preference);
        return found == ofThisRun_.end() ? users_.get(preference) : found->second;
    }

    void set(Preference preference, const std::string& value) override {
        ofThisRun_[preference] = value;
    }

private:
    const Preferences& users_;
    std::map<Preference, std::string> ofThisRun_;
};

} // namespace vantoro
