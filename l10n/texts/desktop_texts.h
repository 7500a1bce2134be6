// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// What the program says in the desktop's panels and notifications.
struct DesktopText {
    static constexpr BilingualText showWindow{"Show Vantoro", "显示 Vantoro"};
    static constexpr BilingualText recordingFor{"Recording: %1", "录音中：%1"};
    static constexpr BilingualText endedByItself{"The recording ended by itself", "录音已自行结束"};
    static constexpr BilingualText recovered{"Recording recovered", "录音已恢复"};
    static constexpr BilingualText play{"Play", "播放"};
    static constexpr BilingualText showInFolder{"Show in Folder", "在文件夹中显示"};
    /// A source and, in a few words, its condition.
    static constexpr BilingualText sourceIs{"%1: %2", "%1：%2"};
};

} // namespace vantoro
