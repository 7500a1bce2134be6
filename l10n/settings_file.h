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

/// Preferences in one small file, which is read once, and written soon after each `set`, on a
/// thread of its own: a disk may be slow. What else the file holds stays in it. A file that is
/// missing or damaged is one that holds less.
class SettingsFile final : public Preferences {
public:
    /// The file and its folder need not exist: they are created when something is stored.
    explicit SettingsFile(const std::filesystem::path& file = usersFile());
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;
    /// As `waitUntilStored`.
    ~SettingsFile() override;

    /// Where the user's preferences are, by the desktop's conventions.
    static std::filesystem::path usersFile();

    std::optional<std::string> get(Preference preference) const override;
    void set(Preference preference, const std::string& value) override;

    /// Returns when all that was set is on the disk, or could not be put there.
    void waitUntilStored();

private:
    using Values = std::map<Preference, std::string>;

    void store();

    QString file_;
    mutable std::mutex mutex_;
    Values values_;   // guarded by mutex_
    Values unstored_; // those of them that are not in the file; guarded by mutex_
    QThreadPool writer_;
};

/// In the user's own file; for what is said where no preferences are at hand.
AppLanguage usersLanguage();

} // namespace vantoro
