// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/font_configuration.h"

#include <system_error>

#include <fontconfig/fontconfig.h>

namespace vantoro::desktop {

std::jthread readFontConfigurationAhead() {
    try {
        // Ignore errors: the toolkit loads the configuration again and handles them.
        return std::jthread([] { FcInit(); });
    } catch (const std::system_error&) {
        return {}; // without a thread, the toolkit loads it on demand
    }
}

} // namespace vantoro::desktop
