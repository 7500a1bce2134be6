// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdio>

#include <sys/types.h>

#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtDBus/QDBusConnection>

#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A login manager in a process of its own, not written by us. Main thread; what waits for it runs
/// the event loop.
class MockLogind {
public:
    explicit MockLogind(const PrivateBus& systemBus);
    MockLogind(const MockLogind&) = delete;
    MockLogind& operator=(const MockLogind&) = delete;
    /// As if it had crashed.
    ~MockLogind();

    /// What is in force, in order: "what, who, why, mode" each.
    QStringList inhibitors() const;
    /// Whether these come to be in force, and no others.
    bool comesToHave(const QStringList& expected) const;
    void prepareForSleep(bool sleeping) const;
    void prepareForShutdown(bool shuttingDown) const;

private:
    QDBusMessage call(const QString& interface, const QString& method,
                      const QVariantList& arguments) const;

    QDBusConnection bus_;
    std::FILE* output_ = nullptr; ///< ends with the process
    pid_t process_ = 0;
};

} // namespace vantoro::testing
