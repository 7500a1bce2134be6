// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

namespace vantoro::bench {

inline std::string digits(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

inline std::string times(double ours, double other) {
    return digits(ours / other, 2) + " ×";
}

/// Prints a row of the table that all benchmarks share; `bench/run` prints its head. What was
/// measured, usually as a ratio; its limit; the work; and the figures behind the ratio.
inline void printRow(std::string_view measured, std::string_view aim, std::string_view work,
                     std::string_view ours, std::string_view other) {
    std::cout << "| " << measured << " | " << aim << " | " << work << " | " << ours << " | "
              << other << " |\n"
              << std::flush;
}

} // namespace vantoro::bench
