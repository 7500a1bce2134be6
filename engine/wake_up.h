#pragma once

#include <cerrno>

#include <semaphore.h>

namespace vantoro {

/// Lets one thread wait for others, which any number of times tell it that there is something to
/// do. Unlike a wait for an atomic it goes to sleep at once, without asking for the processor a few
/// times more: who waits for sound waits long.
class WakeUp {
public:
    WakeUp() noexcept { ::sem_init(&told_, 0, 0); } // fails only for sharing and counts beyond it
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    ~WakeUp() { ::sem_destroy(&told_); }

    /// Real-time safe: makes one system call at most.
    void tell() noexcept { ::sem_post(&told_); } // fails only when told without end already

    /// Returns once for each time that it was told.
    void wait() noexcept {
        while (::sem_wait(&told_) != 0 && errno == EINTR) {
        }
    }

private:
    sem_t told_{};
};

} // namespace vantoro
