// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bus_connection.h"

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {
namespace {

class BusConnectionTest : public ::testing::Test {
protected:
    const desktop::BusObject object{.path = "/object", .interface = "org.example.object"};
    PrivateBus bus;
    desktop::BusConnection connection{bus.address().toStdString()};

    /// A round trip, which completes after everything sent before.
    bool isAnswered() {
        bool answered = false;
        connection.call({.service = "org.freedesktop.DBus",
                         .path = "/org/freedesktop/DBus",
                         .interface = "org.freedesktop.DBus",
                         .member = "GetId"},
                        {}, [&](desktop::BusMessage& reply) { answered = !reply.isError(); });
        return EventLoop::runUntil([&] { return answered; });
    }
};

TEST_F(BusConnectionTest, signalReachesWhoeverListens) {
    int heard = 0;
    connection.listen("type='signal',interface='org.example.object',member='Changed'",
                      [&](desktop::BusMessage&) { ++heard; });
    EXPECT_TRUE(connection.sendSignal(object, "Changed"));
    ASSERT_TRUE(isAnswered());
    EXPECT_EQ(heard, 1);
}

TEST_F(BusConnectionTest, isBehindWhenTheBusStopsReading) {
    ASSERT_TRUE(isAnswered());
    EXPECT_FALSE(connection.isBehind());
    bus.freeze();
    constexpr int moreThanASocketHolds = 100'000;
    for (int i = 0; i < moreThanASocketHolds && !connection.isBehind(); ++i) {
        ASSERT_TRUE(connection.sendSignal(object, "Changed"));
    }
    EXPECT_TRUE(connection.isBehind());
}

TEST_F(BusConnectionTest, withoutABusNothingCanBeSentOrOffered) {
    desktop::BusConnection none("");
    EXPECT_FALSE(none.isOpen());
    EXPECT_FALSE(none.sendSignal(object, "Changed"));
    EXPECT_FALSE(none.exportObject(object, nullptr, nullptr));
    EXPECT_FALSE(none.isBehind());
}

} // namespace
} // namespace vantoro::testing
