// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/font_configuration.h"

#include <system_error>

#include <fontconfig/fontconfig.h>

namespace vantoro::desktop {

std::jthread readFontConfigurationAhead() {
    try {
        // A configuration that cannot be read is the toolkit's to meet: it asks for it again.
        return std::jthread([] { FcInit(); });
    } catch (const std::system_error&) {
        return {}; // then it is read when it is needed
    }
}

} // namespace vantoro::desktop
