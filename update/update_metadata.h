// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <expected>
#include <optional>
#include <string>

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include "update/update_error.h"

namespace vantoro {

/// What the download server says about the latest version.
struct UpdateMetadata {
    std::string version;     ///< dotted numbers, such as "1.4.0", UTF-8
    std::string filename;    ///< the download's name on the server, UTF-8
    std::optional<QUrl> url; ///< the download's full location, to be used as it is

    /// Reads a JSON object with members of these names; others do not matter. `version` and
    /// `filename` must be there, `url` may be left out or null. Any thread.
    static std::expected<UpdateMetadata, UpdateError> decode(const QByteArray& json);

    bool operator==(const UpdateMetadata&) const = default;
};

} // namespace vantoro
