// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace vantoro {

/// Parses a location; none if it is invalid. Any thread.
///
/// Repairs nothing: spaces, control characters, incomplete percent escapes and other forbidden
/// characters make it invalid. Accepts non-ASCII letters, and relative locations; an empty text is
/// invalid.
std::optional<QUrl> validURL(const QString& text);

/// Whether the desktop may open it: only http and https, since the server supplied it; never a
/// local file or program. Any thread.
bool isWebLocation(const QUrl& location);

} // namespace vantoro
