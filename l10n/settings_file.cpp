#include "l10n/settings_file.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace vantoro {

namespace {

QString keyOf(Preference preference) {
    return preference == Preference::appLanguage ? QStringLiteral("appLanguage")
                                                 : QStringLiteral("outputDirectory");
}

/// Text where it is text. A path may be any bytes: those are stored as bytes, to come back as they
/// were.
QVariant variantOf(const std::string& value) {
    const auto bytes = QByteArray::fromStdString(value);
    const auto text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? QVariant(text) : QVariant(bytes);
}

} // namespace

SettingsFile::SettingsFile(const std::filesystem::path& file)
    : settings_(QFile::decodeName(file.c_str()), QSettings::IniFormat) {}

std::filesystem::path SettingsFile::usersFile() {
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(folder.toStdString()) / "vantoro" / "vantoro.conf";
}

std::optional<std::string> SettingsFile::get(Preference preference) const {
    const std::lock_guard lock(mutex_);
    const auto value = settings_.value(keyOf(preference));
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().toStdString();
    case QMetaType::QByteArray:
        return value.toByteArray().toStdString();
    default: // a list, say, in a file that was edited by hand
        return std::nullopt;
    }
}

void SettingsFile::set(Preference preference, const std::string& value) {
    const std::lock_guard lock(mutex_);
    settings_.setValue(keyOf(preference), variantOf(value));
    settings_.sync(); // a program that is killed must not lose it; what fails stays for this run
}

} // namespace vantoro
