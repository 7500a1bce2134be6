// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

namespace vantoro {

/// Why a check failed. The user learns only that it failed.
enum class UpdateError : std::uint8_t {
    invalidResponse, ///< no answer in time, or an unusable one
};

/// The server's record of the latest version.
struct UpdateMetadata {
    std::string version;     ///< dotted numbers, such as "1.4.0", UTF-8
    std::string filename;    ///< the download's name on the server, UTF-8
    std::optional<QUrl> url; ///< the full download location, used as it is

    /// Parses a JSON object with these members; ignores others. `version` and `filename` are
    /// required; `url` may be missing or null. Any thread.
    static std::expected<UpdateMetadata, UpdateError> decode(const QByteArray& json);

    bool operator==(const UpdateMetadata&) const = default;
};

/// A newer version and its download location.
struct NewerVersion {
    std::string version; ///< verbatim from the server
    QUrl location;

    bool operator==(const NewerVersion&) const = default;
};

/// The version that `metadata` offers, if it is newer than the current one. Without a `url`, the
/// location is `filename` below "/downloads/" of the base location, not escaped, so it may be
/// invalid. Any thread.
std::expected<std::optional<NewerVersion>, UpdateError>
newerVersion(const UpdateMetadata& metadata, std::string_view currentVersion,
             const QString& baseLocation);

} // namespace vantoro
