// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <mutex>
#include <string>
#include <vector>

namespace vantoro::testing {

/// The calls that the fakes received, in order. Any thread.
class CallLog {
public:
    void add(std::string call);
    std::vector<std::string> calls() const;
    bool contains(const std::string& call) const;
    /// The calls that begin with `prefix`.
    std::vector<std::string> startingWith(const std::string& prefix) const;

private:
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
};

/// Throws `error` if one is set.
void throwIfSet(const std::exception_ptr& error);

} // namespace vantoro::testing
