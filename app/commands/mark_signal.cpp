// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/mark_signal.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace vantoro {

namespace {

std::atomic<int> signalled = -1; // the descriptor, for the handler

void noteSignal(int /*number*/) {
    const int error = errno;
    const std::uint64_t one = 1;
    // Fails only if the counter is full; a signal is pending then.
    [[maybe_unused]] const auto written = ::write(signalled, &one, sizeof one);
    errno = error;
}

} // namespace

MarkSignal::MarkSignal() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    signalled = descriptor_;
    struct sigaction action{};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGUSR1, &action, &before_);
}

MarkSignal::~MarkSignal() {
    ::sigaction(SIGUSR1, &before_, nullptr);
    signalled = -1;
    ::close(descriptor_);
}

int MarkSignal::take() noexcept {
    std::uint64_t count = 0;
    return ::read(descriptor_, &count, sizeof count) == sizeof count ? static_cast<int>(count) : 0;
}

} // namespace vantoro
