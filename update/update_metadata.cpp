// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/update_metadata.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>

#include "update/semantic_version.h"
#include "update/valid_url.h"

namespace vantoro {

namespace {

constexpr auto invalidRecord = std::unexpected(UpdateError::invalidResponse);

std::optional<std::string> textOf(const QJsonValue& value) {
    const auto text = value.toString();
    // An escape sequence can produce an unpaired surrogate, which is not text.
    return value.isString() && text.isValidUtf16() ? std::optional(text.toStdString())
                                                   : std::nullopt;
}

} // namespace

std::expected<UpdateMetadata, UpdateError> UpdateMetadata::decode(const QByteArray& json) {
    const auto record = QJsonDocument::fromJson(json).object(); // empty for anything but an object
    const auto version = textOf(record["version"]);
    const auto filename = textOf(record["filename"]);
    if (!version || !filename) {
        return invalidRecord;
    }
    UpdateMetadata metadata{.version = *version, .filename = *filename, .url = std::nullopt};
    const auto location = record["url"];
    if (!location.isUndefined() && !location.isNull()) {
        metadata.url = validURL(location.toString()); // empty, so invalid, unless it is text
        if (!metadata.url) {
            return invalidRecord;
        }
    }
    return metadata;
}

std::expected<std::optional<NewerVersion>, UpdateError>
newerVersion(const UpdateMetadata& metadata, std::string_view currentVersion,
             const QString& baseLocation) {
    if (SemanticVersion(currentVersion) >= SemanticVersion(metadata.version)) {
        return std::nullopt;
    }
    const auto location =
        metadata.url
            ? metadata.url
            : validURL(baseLocation + "/downloads/" + QString::fromStdString(metadata.filename));
    if (!location) {
        return invalidRecord;
    }
    return NewerVersion{.version = metadata.version, .location = *location};
}

} // namespace vantoro
