#pragma once

#include <filesystem>
#include <mutex>

#include <QtCore/QSettings>

#include "l10n/preferences.h"

namespace vantoro {

/// Preferences in one small file. Each is on the disk when `set` returns, if it can be; what else
/// the file holds stays in it. A file that is missing or damaged is one that holds less.
class SettingsFile final : public Preferences {
public:
    /// The file and its folder need not exist: they are created when something is stored.
    explicit SettingsFile(const std::filesystem::path& file = usersFile());

    /// Where the user's preferences are, by the desktop's conventions.
    static std::filesystem::path usersFile();

    std::optional<std::string> get(Preference preference) const override;
    void set(Preference preference, const std::string& value) override;

private:
    mutable std::mutex mutex_; // one object of Qt's must not be used on two threads at a time
    QSettings settings_;
};

} // namespace vantoro
