// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/stop_signals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace vantoro {

namespace {

sigset_t stopSignalSet() {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGINT);
    ::sigaddset(&set, SIGTERM);
    struct sigaction hangUp{};
    if (::sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN) {
        ::sigaddset(&set, SIGHUP);
    }
    return set;
}

[[noreturn]] void throwLast(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Milliseconds for poll, rounded up so that a wait never ends early.
int pollTimeout(std::optional<StopSignals::Clock::time_point> deadline) {
    if (!deadline) {
        return -1;
    }
    using std::chrono::milliseconds;
    constexpr milliseconds longest{3'600'000};
    const auto left = *deadline - StopSignals::Clock::now();
    return static_cast<int>(
        std::clamp(std::chrono::ceil<milliseconds>(left), milliseconds{0}, longest).count());
}

} // namespace

StopSignals::StopSignals() {
    const sigset_t set = stopSignalSet();
    if (const int error = ::pthread_sigmask(SIG_BLOCK, &set, nullptr); error != 0) {
        throw std::system_error(error, std::generic_category(), "pthread_sigmask");
    }
    signals_ = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signals_ < 0) {
        throwLast("signalfd");
    }
    wakes_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakes_ < 0) {
        ::close(signals_);
        throwLast("eventfd");
    }
}

StopSignals::~StopSignals() {
    ::close(signals_);
    ::close(wakes_);
}

StopSignals::Event StopSignals::wait(std::optional<Clock::time_point> deadline) {
    for (;;) {
        std::array<pollfd, 2> ready{{{signals_, POLLIN, 0}, {wakes_, POLLIN, 0}}};
        if (::poll(ready.data(), ready.size(), pollTimeout(deadline)) < 0 && errno != EINTR) {
            throwLast("poll");
        }
        if (const auto signal = take()) {
            return *signal;
        }
        std::uint64_t count = 0;
        if (::read(wakes_, &count, sizeof count) == sizeof count) {
            return Event::wake;
        }
        if (deadline && Clock::now() >= *deadline) {
            return Event::deadline;
        }
    }
}

/// Takes one pending signal.
std::optional<StopSignals::Event> StopSignals::take() noexcept {
    signalfd_siginfo signal{};
    if (::read(signals_, &signal, sizeof signal) != sizeof signal) {
        return std::nullopt;
    }
    return signal.ssi_signo == SIGHUP ? Event::hangUp : Event::signal;
}

void StopSignals::wake() noexcept {
    const std::uint64_t one = 1;
    // Fails only if the counter of wakes is full; a wake is pending then.
    [[maybe_unused]] const auto written = ::write(wakes_, &one, sizeof one);
}

} // namespace vantoro
