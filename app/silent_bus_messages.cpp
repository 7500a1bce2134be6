// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/silent_bus_messages.h"

namespace vantoro {

std::string silentBusMessages(const desktop::SilentBuses& silent) {
    std::string text;
    if (silent.session) {
        text +=
            "The session bus does not answer. Vantoro goes on without the desktop's services.\n";
    }
    if (silent.system) {
        text += "The system bus does not answer. The machine may go to sleep or shut down without "
                "waiting for a recording.\n";
    }
    if (silent.accessibility) {
        text += "The accessibility bus does not answer. Screen readers cannot read the window.\n";
    }
    return text;
}

} // namespace vantoro
