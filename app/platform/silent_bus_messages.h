// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "l10n/app_language.h"
#include "l10n/texts/command_texts.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Tells the user which buses do not answer and what is missing without them; complete lines.
inline std::string silentBusMessages(const desktop::SilentBuses& silent, AppLanguage language) {
    std::string text;
    const auto add = [&](bool isSilent, const BilingualText& message) {
        text += isSilent ? message.in(language) + "\n" : "";
    };
    add(silent.session, CommandText::sessionBusSilent);
    add(silent.system, CommandText::systemBusSilent);
    add(silent.accessibility, CommandText::accessibilityBusSilent);
    return text;
}

} // namespace vantoro
