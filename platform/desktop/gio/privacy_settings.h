// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::desktop {

/// Whether the desktop's privacy settings currently disable microphones. False if there is no such
/// setting. Any thread.
bool microphoneDisabledBySettings(const char* schema = "org.gnome.desktop.privacy");

} // namespace vantoro::desktop
