// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <semaphore>

#include <QtCore/QObject>

#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A login manager that answers the first inhibit request on demand, and refuses all others. Main
/// thread; waiting functions run the event loop.
class SlowLogind {
public:
    explicit SlowLogind(const PrivateBus& systemBus);
    SlowLogind(const SlowLogind&) = delete;
    SlowLogind& operator=(const SlowLogind&) = delete;
    ~SlowLogind();

    /// Whether it eventually receives this many inhibit requests.
    bool isEventuallyAsked(int times) const;

    void answer() { mayAnswer_.release(); }

    static void prepareForSleep();

    /// Whether the first caller, answered or not, may still hold its lock.
    bool isHeld() const;
    bool isEventuallyReleased() const;

private:
    QDBusMessage inhibit(const QDBusMessage& question);

    std::array<int, 2> pipe_{}; ///< held while its write end is open anywhere
    std::counting_semaphore<2> mayAnswer_{0};
    bool handedOut_ = false; ///< on the service's thread
    int asked_ = 0;
    QObject mainThread_; ///< drops pending calls on destruction
    BusService service_;
};

} // namespace vantoro::testing
