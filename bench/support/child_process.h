// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace vantoro::bench {

/// What running a program to its end took.
struct ProcessCost {
    double wallSeconds = 0;
    double cpuSeconds = 0;
    double peakMegabytes = 0; ///< of memory at one time
};

/// Runs a program, found in PATH, and waits for it. Throws std::runtime_error when it cannot be run
/// or reports failure.
ProcessCost runProcess(const std::vector<std::string>& command);

} // namespace vantoro::bench
