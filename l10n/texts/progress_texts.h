// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// How far work is.
struct ProgressText {
    /// How much is done, and the time that remains.
    static constexpr BilingualText timeLeft{"%1, %2 left", "%1，剩余 %2"};
    /// How much is done.
    static constexpr BilingualText salvage{"Recovering interrupted recordings: %1",
                                           "正在恢复中断的录音：%1"};
};

} // namespace vantoro
