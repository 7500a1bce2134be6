// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include <QtCore/QString>
#include <QtCore/QUrl>

#include "update/update_error.h"
#include "update/update_metadata.h"

namespace vantoro {

/// A version worth having, and where it can be downloaded.
struct NewerVersion {
    std::string version; ///< as the server writes it
    QUrl location;

    bool operator==(const NewerVersion&) const = default;
};

/// What `metadata` offers to whoever has the current version: nothing when that is the latest, or
/// newer still. Without a `url` the download is the `filename` below "/downloads/" of the base
/// location, taken as it stands, which need not give a valid location. Any thread.
std::expected<std::optional<NewerVersion>, UpdateError>
newerVersion(const UpdateMetadata& metadata, std::string_view currentVersion,
             const QString& baseLocation);

} // namespace vantoro
