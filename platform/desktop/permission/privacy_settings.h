// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::desktop {

/// Whether the desktop's privacy settings, as they are now, keep programs from the microphone.
/// False where the desktop has no such setting. Any thread.
bool microphoneDisabledBySettings(const char* schema = "org.gnome.desktop.privacy");

} // namespace vantoro::desktop
