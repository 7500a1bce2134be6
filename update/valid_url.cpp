// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/valid_url.h"

namespace vantoro {

std::optional<QUrl> validURL(const QString& text) {
    const QUrl location(text, QUrl::StrictMode);
    // QUrl accepts unpaired surrogates.
    return location.isValid() && text.isValidUtf16() ? std::optional(location) : std::nullopt;
}

bool isWebLocation(const QUrl& location) {
    const auto scheme = location.scheme(); // always in lower case
    return location.isValid() && !location.host().isEmpty() &&
           (scheme == "https" || scheme == "http");
}

} // namespace vantoro
