// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/power_management.h"

#include <utility>

#include <QtCore/QByteArray>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

/// Sets an environment variable for one test; null unsets it.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name), before_(qgetenv(name)) {
        set(value);
    }

    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    ~Variable() { set(before_.isNull() ? nullptr : before_.constData()); }

private:
    void set(const char* value) const {
        EXPECT_TRUE(value == nullptr ? qunsetenv(name_) : qputenv(name_, value));
    }

    const char* name_;
    QByteArray before_;
};

struct Environment {
    const char* system;
    const char* session;
    const char* runtimeFolder;
};

desktop::BusAddresses busesIn(const Environment& environment) {
    const Variable system("DBUS_SYSTEM_BUS_ADDRESS", environment.system);
    const Variable session("DBUS_SESSION_BUS_ADDRESS", environment.session);
    const Variable runtimeFolder("XDG_RUNTIME_DIR", environment.runtimeFolder);
    return desktop::standardBusAddresses();
}

TEST(StandardBusAddressesTest, areTakenFromTheEnvironment) {
    const auto buses = busesIn({"unix:path=/a", "unix:path=/b", "/run/user/1"});
    EXPECT_EQ(buses.system, "unix:path=/a");
    EXPECT_EQ(buses.session, "unix:path=/b");
}

TEST(StandardBusAddressesTest, areTheStandardLocationsByDefault) {
    const auto buses = busesIn({nullptr, nullptr, "/run/user/1,a;b"});
    EXPECT_EQ(buses.system, "unix:path=/run/dbus/system_bus_socket");
    EXPECT_EQ(buses.session, "unix:path=/run/user/1%2Ca%3Bb/bus");
}

TEST(StandardBusAddressesTest, areEmptyWithoutARuntimeFolder) {
    EXPECT_EQ(busesIn({nullptr, nullptr, nullptr}).session, "");
}

} // namespace
} // namespace vantoro::testing
