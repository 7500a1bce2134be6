// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

namespace vantoro::bench {

/// The cost of running a program to its end.
struct ProcessCost {
    double wallSeconds = 0;
    double cpuSeconds = 0;
    double peakMegabytes = 0; ///< memory
};

/// Runs a program from PATH and waits for it. Throws std::runtime_error if it cannot be run or
/// fails.
ProcessCost runProcess(const std::vector<std::string>& command);

} // namespace vantoro::bench
