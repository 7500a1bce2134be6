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
