// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace vantoro {

/// The location that the text spells; none when it is no valid one. Any thread.
///
/// Nothing is repaired: blanks, controls, unfinished percent signs and other characters that a
/// location must not hold make it invalid. Letters beyond ASCII may stand in it. A relative one is
/// valid as well as an absolute one; the empty text is none.
std::optional<QUrl> validURL(const QString& text);

/// Whether it may be handed to the desktop to be opened: a server said it, so only what a browser
/// fetches from the net, and no local file or program. Any thread.
bool isWebLocation(const QUrl& location);

} // namespace vantoro
