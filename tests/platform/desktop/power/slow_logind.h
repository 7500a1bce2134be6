// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <semaphore>

#include <QtCore/QObject>

#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A login manager that answers the first who holds off sleep not until it is told to, and refuses
/// all others. Main thread; what waits for it runs the event loop.
class SlowLogind {
public:
    explicit SlowLogind(const PrivateBus& systemBus);
    SlowLogind(const SlowLogind&) = delete;
    SlowLogind& operator=(const SlowLogind&) = delete;
    ~SlowLogind();

    /// Whether it comes to be asked so many times to hold off sleep.
    bool comesToBeAsked(int times) const;

    void answer() { mayAnswer_.release(); }

    static void prepareForSleep();

    /// Whether the first who asked, answered or not, may still keep what it asked for.
    bool isHeld() const;
    bool comesToBeGivenUp() const;

private:
    QDBusMessage inhibit(const QDBusMessage& question);

    std::array<int, 2> pipe_{}; ///< held for as long as its writing end is open anywhere
    std::counting_semaphore<2> mayAnswer_{0};
    bool handedOut_ = false; ///< on the service's thread
    int asked_ = 0;
    QObject mainThread_; ///< what has not arrived when it ends does not arrive
    BusService service_;
};

} // namespace vantoro::testing
