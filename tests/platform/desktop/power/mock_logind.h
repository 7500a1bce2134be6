// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdio>

#include <sys/types.h>

#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtDBus/QDBusConnection>

#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// An independent mock of logind, in its own process. Main thread; waiting functions run the event
/// loop.
class MockLogind {
public:
    explicit MockLogind(const PrivateBus& systemBus);
    MockLogind(const MockLogind&) = delete;
    MockLogind& operator=(const MockLogind&) = delete;
    /// Kills it, like a crash.
    ~MockLogind();

    /// The locks in force, in order, each as "what, who, why, mode".
    QStringList inhibitors() const;
    /// Whether exactly these are eventually in force.
    bool eventuallyHas(const QStringList& expected) const;
    void prepareForSleep(bool sleeping) const;
    void prepareForShutdown(bool shuttingDown) const;

private:
    QDBusMessage call(const QString& interface, const QString& method,
                      const QVariantList& arguments) const;

    QDBusConnection bus_;
    std::FILE* output_ = nullptr; ///< closing it waits for the process
    pid_t process_ = 0;
};

} // namespace vantoro::testing
