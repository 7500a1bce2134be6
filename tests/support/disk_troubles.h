// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <set>

namespace vantoro::testing {

/// What fails on a test's disk, and what happens meanwhile. Set before use; atomic members, at any
/// time.
struct DiskTroubles {
    std::exception_ptr createFoldersError;
    std::exception_ptr createError;
    std::exception_ptr createUnnamedError;
    std::exception_ptr claimError;
    std::exception_ptr openError;
    std::exception_ptr moveError; ///< of names that files take, too
    std::exception_ptr syncFolderError;
    std::exception_ptr listError;
    std::exception_ptr availableSpaceError;
    std::map<std::filesystem::path, std::exception_ptr> removeErrors;
    std::set<std::filesystem::path> locked; ///< by somebody else
    std::function<void(const std::filesystem::path&)> afterRemove;
    std::function<void()> afterClaim;
    std::atomic<bool> syncFails = false;
    std::atomic<bool> isUnreachable = false; ///< what `ensureReachable` looks for
    std::atomic<bool> hasUnnamedFiles = true;
};

} // namespace vantoro::testing
