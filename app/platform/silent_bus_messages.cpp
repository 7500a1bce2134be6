// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/platform/silent_bus_messages.h"

#include "l10n/texts/command_texts.h"

namespace vantoro {

std::string silentBusMessages(const desktop::SilentBuses& silent, AppLanguage language) {
    std::string text;
    const auto add = [&](bool isSilent, CommandText message) {
        text += isSilent ? commandText(message, language) + "\n" : "";
    };
    add(silent.session, CommandText::sessionBusSilent);
    add(silent.system, CommandText::systemBusSilent);
    add(silent.accessibility, CommandText::accessibilityBusSilent);
    return text;
}

} // namespace vantoro
