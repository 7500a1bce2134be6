// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace vantoro::journal {

struct Fault {
    std::chrono::system_clock::time_point time;
    std::string message; ///< English

    friend bool operator==(const Fault&, const Fault&) = default;
};

/// This user's latest warnings and errors about recordings, at most `count`, none older than
/// `since`, newest first. Empty if the journal cannot be read. `folder` holds other journal files
/// than the system's. May wait for the disk.
std::vector<Fault> recentFaults(std::size_t count, std::chrono::system_clock::time_point since,
                                const std::filesystem::path& folder = {});

} // namespace vantoro::journal
