// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/lost_memory.h"

#include <atomic>
#include <csignal>

#include <sys/mman.h>
#include <unistd.h>

namespace vantoro::posix {

namespace {

thread_local constinit bool isExpectedHere = false;
constinit std::atomic<std::uint64_t> replaced = 0; // lock-free, so a signal handler may use it
std::uintptr_t pageSize = 0;
struct sigaction formerAction{};

void replacePage(int number, siginfo_t* fault, void*) noexcept {
    const auto page = reinterpret_cast<std::uintptr_t>(fault->si_addr) & ~(pageSize - 1);
    // The instruction runs again after the handler.
    if (isExpectedHere && fault->si_code == BUS_ADRERR &&
        ::mmap(reinterpret_cast<void*>(page), pageSize, PROT_READ | PROT_WRITE,
               MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED) {
        replaced.fetch_add(1, std::memory_order_relaxed);
    } else {
        ::sigaction(number, &formerAction, nullptr);
    }
}

} // namespace

void replaceLostMemory() noexcept {
    [[maybe_unused]] static const int once = [] {
        pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
        struct sigaction action{};
        action.sa_sigaction = replacePage;
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        return ::sigaction(SIGBUS, &action, &formerAction);
    }();
}

void expectLostMemoryHere() noexcept {
    isExpectedHere = true;
}

std::uint64_t lostPages() noexcept {
    return replaced.load(std::memory_order_relaxed);
}

} // namespace vantoro::posix
