// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/gio/privacy_settings.h"

#include <memory>

#include <gio/gio.h>

namespace vantoro::desktop {

namespace {

struct ReleaseSchema {
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
};

struct ReleaseSettings {
    void operator()(GSettings* settings) const { g_object_unref(settings); }
};

} // namespace

bool microphoneDisabledBySettings(const char* schema) {
    constexpr const char* key = "disable-microphone";
    // GSettings aborts the program if the schema or key is missing, so check first.
    GSettingsSchemaSource* const installed = g_settings_schema_source_get_default();
    if (installed == nullptr) {
        return false;
    }
    const std::unique_ptr<GSettingsSchema, ReleaseSchema> found(
        g_settings_schema_source_lookup(installed, schema, TRUE));
    if (!found || g_settings_schema_has_key(found.get(), key) == FALSE) {
        return false;
    }
    const std::unique_ptr<GSettings, ReleaseSettings> settings(
        g_settings_new_full(found.get(), nullptr, nullptr));
    return g_settings_get_boolean(settings.get(), key) != FALSE;
}

} // namespace vantoro::desktop
