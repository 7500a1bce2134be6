// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <expected>
#include <optional>
#include <string>

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include "update/update_error.h"

namespace vantoro {

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

} // namespace vantoro
