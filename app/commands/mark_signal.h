// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <csignal>

namespace vantoro {

/// Makes SIGUSR1, which otherwise ends the program, readable from a descriptor. One at a time; the
/// destructor restores what was before. Throws std::system_error.
class MarkSignal {
public:
    MarkSignal();
    MarkSignal(const MarkSignal&) = delete;
    MarkSignal& operator=(const MarkSignal&) = delete;
    ~MarkSignal();

    /// Readable while a signal is pending; poll it, do not read it.
    int descriptor() const noexcept { return descriptor_; }

    /// How many signals came since the last call. The kernel joins those that come at once.
    int take() noexcept;

private:
    int descriptor_ = -1;
    struct sigaction before_{};
};

} // namespace vantoro
