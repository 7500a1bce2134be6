// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/settings_file.h"

#include <array>
#include <utility>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include "l10n/l10n.h"

namespace vantoro {

namespace {

constexpr std::array allPreferences{Preference::outputDirectory, Preference::appLanguage,
                                    Preference::windowSize, Preference::keepTracks};

QString keyOf(Preference preference) {
    switch (preference) {
    case Preference::appLanguage:
        return QStringLiteral("appLanguage");
    case Preference::windowSize:
        return QStringLiteral("windowSize");
    case Preference::keepTracks:
        return QStringLiteral("keepTracks");
    case Preference::outputDirectory:
        break;
    }
    return QStringLiteral("outputDirectory");
}

/// Stores valid UTF-8 as text. Paths may be any bytes; others are stored as bytes, unchanged.
QVariant variantOf(const std::string& value) {
    const auto bytes = QByteArray::fromStdString(value);
    const auto text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? QVariant(text) : QVariant(bytes);
}

std::optional<std::string> read(const QSettings& settings, Preference preference) {
    const auto value = settings.value(keyOf(preference));
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().toStdString();
    case QMetaType::QByteArray:
        return value.toByteArray().toStdString();
    default: // a list, say, in a file edited by hand
        return std::nullopt;
    }
}

} // namespace

SettingsFile::SettingsFile(const std::filesystem::path& file)
    : file_(QFile::decodeName(file.c_str())) {
    writer_.setMaxThreadCount(1); // keeps writes in order
    const QSettings settings(file_, QSettings::IniFormat);
    for (const auto preference : allPreferences) {
        if (auto value = read(settings, preference)) {
            values_.emplace(preference, *std::move(value));
        }
    }
}

SettingsFile::~SettingsFile() {
    waitUntilStored();
}

std::filesystem::path SettingsFile::usersFile() {
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(folder.toStdString()) / "vantoro" / "vantoro.conf";
}

std::optional<std::string> SettingsFile::get(Preference preference) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(preference);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void SettingsFile::set(Preference preference, const std::string& value) {
    {
        const std::lock_guard lock(mutex_);
        values_[preference] = value;
        unstored_[preference] = value;
    }
    writer_.start([this] { store(); });
}

void SettingsFile::store() {
    Values values;
    {
        const std::lock_guard lock(mutex_);
        values = std::exchange(unstored_, {});
    }
    QSettings settings(file_, QSettings::IniFormat);
    for (const auto& [preference, value] : values) {
        settings.setValue(keyOf(preference), variantOf(value));
    }
    settings.sync(); // must survive a killed process
    if (settings.status() == QSettings::AccessError) {
        const std::lock_guard lock(mutex_);
        unstored_.merge(values); // retried with the next write
    }
}

void SettingsFile::waitUntilStored() {
    writer_.waitForDone();
}

AppLanguage usersLanguage() {
    const SettingsFile preferences;
    return L10n(preferences).language();
}

} // namespace vantoro
