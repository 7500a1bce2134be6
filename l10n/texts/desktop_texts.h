// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// What the program says in the desktop's panels and notifications.
struct DesktopText {
    static constexpr BilingualText showWindow{"Show Vantoro", "显示 Vantoro"};
    static constexpr BilingualText recordingFor{"Recording: %1", "录音中：%1"};
};

} // namespace vantoro
