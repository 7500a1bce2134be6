// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/permission/privacy_switch.h"

#include <gio/gio.h>

namespace vantoro::testing {

void PrivacySwitch::disableMicrophone(bool disabled) {
    GSettings* const settings = g_settings_new("org.gnome.desktop.privacy");
    g_settings_set_boolean(settings, "disable-microphone", disabled ? TRUE : FALSE);
    g_settings_sync();
    g_object_unref(settings);
}

} // namespace vantoro::testing
