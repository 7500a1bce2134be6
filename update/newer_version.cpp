// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/newer_version.h"

#include "update/semantic_version.h"
#include "update/valid_url.h"

namespace vantoro {

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
        return std::unexpected(UpdateError::invalidResponse);
    }
    return NewerVersion{.version = metadata.version, .location = *location};
}

} // namespace vantoro
