// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/call_log.h"

#include <algorithm>
#include <utility>

namespace vantoro::testing {

void CallLog::add(std::string call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
}

std::vector<std::string> CallLog::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

bool CallLog::contains(const std::string& call) const {
    const auto all = calls();
    return std::ranges::find(all, call) != all.end();
}

std::vector<std::string> CallLog::startingWith(const std::string& prefix) const {
    auto found = calls();
    std::erase_if(found, [&](const std::string& call) { return !call.starts_with(prefix); });
    return found;
}

void throwIfSet(const std::exception_ptr& error) {
    if (error) {
        std::rethrow_exception(error);
    }
}

} // namespace vantoro::testing
