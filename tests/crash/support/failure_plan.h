// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace vantoro::testing {

/// The file that is open under a number.
std::string pathOf(int descriptor);
/// What a path means that is told from a folder that is open, or from the working folder.
std::string pathOf(int folder, const char* path);

enum class Fate { succeeds, fails, hangs, dies };

/// Which calls of this process go wrong, and how; any thread.
///
/// VANTORO_FAILING_FOLDER  the folder; calls on other files pass untouched
/// VANTORO_FAILING_LOG     the number of an open descriptor; each call is a line there:
///                         kind, role of the file, the how-manieth of these, result, file's size
/// VANTORO_FAILING_CALL    "KIND ROLE NUMBER": which call goes wrong; none when it is not set
/// VANTORO_FAILING_HOW     how: EIO, ENOSPC, "hang" (it never returns), "gone" (EIO from then on,
///                         whatever is called), "die" (the program is killed instead)
/// VANTORO_KEPT_RECORDINGS another folder, where each temporary file that goes keeps a name
class FailurePlan {
public:
    static FailurePlan& shared();

    bool concerns(const std::string& path) const;
    /// What a file is to the recorder, told by its name.
    std::string role(std::string path) const;
    /// Counts the call. `name`: "KIND ROLE", to which its number is added.
    Fate meet(std::string& name);
    bool isGone();
    /// Gives a temporary file that is about to lose its name another one, where one is wanted.
    void keep(const std::string& path) const;
    int error() const;
    /// `size`: of the file, in bytes; -1 where there is none.
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
