// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/activation_token.h"

#include <string_view>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

/// Reads a dictionary entry's value if it is a string; otherwise skips it.
int readValue(sd_bus_message* call, const char** text) {
    const char* type = nullptr;
    const int read = sd_bus_message_peek_type(call, nullptr, &type);
    if (read < 0) {
        return read;
    }
    return std::string_view(type) == "s" ? sd_bus_message_read(call, "v", "s", text)
                                         : sd_bus_message_skip(call, "v");
}

} // namespace

int readActivationToken(sd_bus_message* call, std::string& token) {
    int read = sd_bus_message_enter_container(call, 'a', "{sv}");
    while (read >= 0 && (read = sd_bus_message_enter_container(call, 'e', "sv")) > 0) {
        const char* name = nullptr;
        const char* text = nullptr;
        read = sd_bus_message_read(call, "s", &name);
        if (read >= 0) {
            read = readValue(call, &text);
        }
        if (read >= 0 && text != nullptr &&
            (std::string_view(name) == "activation-token" ||
             (std::string_view(name) == "desktop-startup-id" && token.empty()))) {
            token = text;
        }
        if (read >= 0) {
            read = sd_bus_message_exit_container(call);
        }
    }
    return read < 0 ? read : sd_bus_message_exit_container(call);
}

} // namespace vantoro::desktop
