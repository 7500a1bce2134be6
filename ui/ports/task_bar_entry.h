// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

namespace vantoro {

/// The program's entry in the desktop's task bar. Main thread; never waits for the desktop.
class TaskBarEntry {
public:
    virtual ~TaskBarEntry() = default;

    /// 0 to 1; nothing for no progress.
    virtual void setProgress(std::optional<double> fraction) = 0;
};

} // namespace vantoro
