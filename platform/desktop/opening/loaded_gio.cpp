// SPDX-License-Identifier: GPL-3.0-or-later

// In place of what uses GIO itself, for a program that loads it when it needs it. Where it cannot
// be loaded there is no default application, and no such setting.

#include <exception>
#include <iostream>

#include "platform/desktop/opening/gio_module.h"

namespace vantoro::desktop {

namespace {

const GioModule* gio() {
    try {
        static const auto& module = static_cast<const GioModule&>(
            loadModule(moduleBesideTheProgram("vantoro-gio.so"), gioModuleName));
        return &module;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return nullptr;
    }
}

} // namespace

bool openWithDefaultApplication(const std::string& uri, const Patience& patience) {
    const auto* const module = gio();
    return module != nullptr && module->open(uri, patience);
}

bool microphoneDisabledBySettings(const char* schema) {
    const auto* const module = gio();
    return module != nullptr && module->microphoneDisabled(schema);
}

} // namespace vantoro::desktop
