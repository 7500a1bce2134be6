// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace vantoro {

/// Parses a location and repairs nothing; none if it is empty or has forbidden characters, such as
/// spaces and incomplete percent escapes. Non-ASCII letters and relative locations are valid. Any
/// thread.
std::optional<QUrl> validURL(const QString& text);

/// Whether the desktop may open what the server supplied: only http and https. Any thread.
bool isWebLocation(const QUrl& location);

} // namespace vantoro
