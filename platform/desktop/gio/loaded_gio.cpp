// SPDX-License-Identifier: GPL-3.0-or-later

// The functions of this folder for a program that loads the module on first use.

#include "engine/failure.h"
#include "platform/desktop/gio/gio_module.h"

namespace vantoro::desktop {

namespace {

/// Null if the module is missing or of another version.
const GioModule* gio() {
    static const GioModule* const loaded = [] {
        try {
            return static_cast<const GioModule*>(
                &loadModule(moduleBesideTheProgram("vantoro-gio.so"), gioModuleName));
        } catch (const Failure&) {
            return static_cast<const GioModule*>(nullptr);
        }
    }();
    return loaded;
}

} // namespace

bool openWithDefaultApplication(const std::string& uri, const Patience& patience) {
    return gio() != nullptr && gio()->open(uri, patience);
}

bool microphoneDisabledBySettings(const char* schema) {
    return gio() != nullptr && gio()->microphoneDisabled(schema);
}

} // namespace vantoro::desktop
