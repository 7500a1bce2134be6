// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <map>
#include <mutex>

#include <QtCore/QString>
#include <QtCore/QThreadPool>

#include "l10n/app_language.h"
#include "l10n/preferences.h"

namespace vantoro {

/// Preferences in one small file. Reads it once, and writes soon after each `set` on its own
/// thread, because disks may be slow. Keeps unknown entries; treats a missing or damaged file as
/// empty.
class SettingsFile final : public Preferences {
public:
    /// Creates the file and its folder on the first write.
    explicit SettingsFile(const std::filesystem::path& file = usersFile());
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    /// Waits as `waitUntilStored` does.
    ~SettingsFile() override;

    /// The path of the user's preferences, by the desktop's conventions.
    static std::filesystem::path usersFile();

    std::optional<std::string> get(Preference preference) const override;
    void set(Preference preference, const std::string& value) override;

    /// Returns when every change is on the disk, or failed to be written.
    void waitUntilStored();

private:
    using Values = std::map<Preference, std::string>;

    void store();

    QString file_;
    mutable std::mutex mutex_;
    Values values_;   // guarded by mutex_
    Values unstored_; // those not yet in the file; guarded by mutex_
    QThreadPool writer_;
};

/// In the user's own file; for what is said where no preferences are at hand.
AppLanguage usersLanguage();

} // namespace vantoro
