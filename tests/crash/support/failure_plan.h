// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace vantoro::testing {

/// The path of an open descriptor.
std::string pathOf(int descriptor);
/// A path resolved against an open folder, or the working folder.
std::string pathOf(int folder, const char* path);

enum class Fate { succeeds, fails, hangs, dies };

/// Which calls of this process fail, and how. Any thread.
///
/// VANTORO_FAILING_FOLDER  the folder; calls on other files are passed through
/// VANTORO_FAILING_LOG     an open descriptor that receives a line per call:
///                         kind, role of the file, their count so far, result, file size
/// VANTORO_FAILING_CALL    "KIND ROLE NUMBER": the call that fails; none if unset
/// VANTORO_FAILING_HOW     how: EIO, ENOSPC, "hang" (never returns), "gone" (EIO from then on for
///                         all calls), "die" (kills the program instead)
/// VANTORO_KEPT_RECORDINGS another folder, which keeps a link to each removed temporary file
class FailurePlan {
public:
    static FailurePlan& shared();

    bool concerns(const std::string& path) const;
    /// A file's role in a recording, from its name.
    std::string role(std::string path) const;
    /// Counts the call. `name`: "KIND ROLE"; appends its number.
    Fate meet(std::string& name);
    bool isGone();
    /// Links a temporary file that is about to be removed into the folder of kept recordings, if
    /// set.
    void keep(const std::string& path) const;
    int error() const;
    /// `size`: of the file, in bytes; -1 if unknown.
    void log(const std::string& name, std::string_view result, long long size = -1) const;

private:
    FailurePlan();

    std::mutex mutex_;
    std::map<std::string, int> met_;
    bool isGone_ = false;
    std::string folder_;
    std::string chosen_;
    std::string how_;
    std::string kept_;
    int log_;
};

} // namespace vantoro::testing
