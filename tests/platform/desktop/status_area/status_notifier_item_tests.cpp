// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_item.h"

#include <memory>
#include <optional>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/silent_bus.h"
#include "tests/platform/desktop/status_area/status_notifier_fixture.h"

namespace vantoro::testing {
namespace {

/// With one watcher from the start.
class StatusNotifierItemTest : public StatusNotifierTest {
protected:
    std::optional<TestWatcher> watcher{std::in_place, bus};

    QString registeredItem(int number = 0) {
        EXPECT_TRUE(EventLoop::runUntil([&] { return watcher->items().size() > number; }));
        return watcher->items().value(number);
    }
};

TEST_F(StatusNotifierItemTest, eachItemIsRegisteredByAConnectionOfItsOwn) {
    const auto first = makeItem("first");
    const auto second = makeItem("second");
    const auto one = registeredItem(0);
    const auto other = registeredItem(1);
    EXPECT_TRUE(one.startsWith(':')) << one.toStdString();
    EXPECT_NE(one, other);
    QStringList identifiers{propertiesOf(one)["Id"].toString(),
                            propertiesOf(other)["Id"].toString()};
    identifiers.sort();
    EXPECT_EQ(identifiers, QStringList({"first", "second"}));
}

TEST_F(StatusNotifierItemTest, panelReadsWhatTheItemIs) {
    const auto item = makeItem("identifier", "tool tip");
    item->setImage(picture(1), "read aloud");
    const auto properties = propertiesOf(registeredItem());
    EXPECT_EQ(properties["Id"], "identifier");
    EXPECT_EQ(properties["Category"], "Hardware");
    EXPECT_EQ(properties["Status"], "Active");
    EXPECT_EQ(properties["Title"], "read aloud");
    EXPECT_EQ(properties["IconAccessibleDesc"], "read aloud");
    EXPECT_EQ(properties["IconName"], "");
    EXPECT_EQ(properties["ItemIsMenu"], false);
    EXPECT_EQ(properties["Menu"].value<QDBusObjectPath>().path(), "/MenuBar");
}

TEST_F(StatusNotifierItemTest, panelReadsThePictureInEverySize) {
    const auto item = makeItem();
    item->setImage(picture(1), "");
    EXPECT_EQ(pictureOf(registeredItem()), picture(1));
}

TEST_F(StatusNotifierItemTest, panelReadsTheToolTip) {
    const auto item = makeItem("identifier", "tool tip");
    item->setToolTipDetail("detail");
    const auto property = propertiesOf(registeredItem())["ToolTip"];
    const auto toolTip = property.value<QDBusArgument>();
    ASSERT_EQ(toolTip.currentSignature(), "(sa(iiay)ss)");
    QString icon;
    QString title;
    QString text;
    toolTip.beginStructure();
    toolTip >> icon;
    toolTip.beginArray();
    EXPECT_TRUE(toolTip.atEnd());
    toolTip.endArray();
    toolTip >> title >> text;
    toolTip.endStructure();
    EXPECT_EQ(title, "tool tip");
    EXPECT_EQ(icon, "");
    EXPECT_EQ(text, "detail");
}

TEST_F(StatusNotifierItemTest, clickHasItsActivationToken) {
    const auto item = makeItem();
    const auto name = registeredItem();
    callItem(name, "ProvideXdgActivationToken", {"token"});
    EXPECT_EQ(callItem(name, "Activate", {1, 2}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(callItem(name, "Activate", {1, 2}).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(EventLoop::runUntil([&] { return clicks.size() == 2; }));
    EXPECT_EQ(clicks, QStringList({"token", ""}));
}

TEST_F(StatusNotifierItemTest, everyButtonIsAClickAndTheWheelIsNot) {
    const auto item = makeItem();
    const auto name = registeredItem();
    EXPECT_EQ(callItem(name, "Scroll", {120, "vertical"}).type(), QDBusMessage::ReplyMessage);
    callItem(name, "SecondaryActivate", {1, 2});
    callItem(name, "ContextMenu", {1, 2});
    ASSERT_TRUE(EventLoop::runUntil([&] { return clicks.size() >= 2; }));
    EXPECT_EQ(clicks.size(), 2);
}

TEST_F(StatusNotifierItemTest, clickMayDestroyTheItem) {
    int count = 0;
    std::unique_ptr<StatusItem> item;
    item = area.makeItem({.identifier = "an-item", .toolTip = "", .clicked = [&](const auto&) {
                              ++count;
                              item.reset();
                          }});
    const auto name = registeredItem();
    postToItem(name, "Activate", {1, 2});
    postToItem(name, "Activate", {1, 2});
    callItem(name, "Activate", {1, 2}); // answered after those, by the item or the bus
    EXPECT_TRUE(EventLoop::runUntil([&] { return item == nullptr; }));
    EXPECT_EQ(count, 1);
}

TEST_F(StatusNotifierItemTest, watcherThatComesAgainGetsTheItemsAgain) {
    const auto first = makeItem();
    const auto second = makeItem();
    registeredItem(1);
    auto before = watcher->items();
    watcher.reset();
    watcher.emplace(bus);
    registeredItem(1);
    auto after = watcher->items();
    before.sort();
    after.sort();
    EXPECT_EQ(after, before);
}

TEST_F(StatusNotifierItemTest, watcherThatComesLaterGetsTheItem) {
    watcher.reset();
    const auto item = makeItem();
    ASSERT_TRUE(EventLoop::runUntil([&] { return area.isAvailable() == false; }));
    watcher.emplace(bus);
    EXPECT_EQ(propertiesOf(registeredItem())["Id"], "an-item");
}

TEST_F(StatusNotifierItemTest, newPictureIsSignalled) {
    const auto item = makeItem();
    const auto name = registeredItem();
    item->setImage(picture(1), "tool tip");
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("NewIcon") == 1; }));
    EXPECT_EQ(pictureOf(name), picture(1));
    waitForPace();
    EXPECT_EQ(heard("NewIcon"), 1);
    EXPECT_EQ(heard("NewTitle"), 0);
}

TEST_F(StatusNotifierItemTest, equalPictureIsNotSignalled) {
    const auto item = makeItem();
    const auto name = registeredItem();
    item->setImage(picture(1), "tool tip");
    waitForPace();
    item->setImage(picture(1), "tool tip");
    waitForPace();
    item->setImage(picture(1), "tool tip");
    waitForPace();
    EXPECT_EQ(heard("NewIcon"), 1);
}

TEST_F(StatusNotifierItemTest, newDescriptionIsSignalled) {
    const auto item = makeItem();
    const auto name = registeredItem();
    item->setImage({}, "read aloud");
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("NewIcon") == 1; }));
    EXPECT_EQ(heard("NewTitle"), 1);
    EXPECT_EQ(heard("NewToolTip"), 0);
    EXPECT_EQ(propertiesOf(name)["Title"], "read aloud");
}

TEST_F(StatusNotifierItemTest, newDetailOfTheToolTipIsSignalledAlone) {
    const auto item = makeItem();
    registeredItem();
    item->setToolTipDetail("one");
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("NewToolTip") == 1; }));
    waitForPace();
    item->setToolTipDetail("one");
    waitForPace();
    EXPECT_EQ(heard("NewToolTip"), 1);
    EXPECT_EQ(heard("NewIcon"), 0);
}

TEST_F(StatusNotifierItemTest, burstIsSignalledAtItsStartAndEnd) {
    const auto item = makeItem();
    const auto name = registeredItem();
    QElapsedTimer timer;
    timer.start();
    for (int number = 1; number <= 200; ++number) {
        item->setImage(picture(number), "tool tip");
    }
    // On a busy machine a burst takes longer and has more signals.
    const auto most = 2 + (timer.elapsed() / desktop::StatusNotifierItem::signalDistance.count());
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("NewIcon") >= 2; }));
    EXPECT_EQ(pictureOf(name), picture(200));
    waitForPace();
    EXPECT_GE(heard("NewIcon"), 2);
    EXPECT_LE(heard("NewIcon"), most);
}

TEST_F(StatusNotifierItemTest, longBurstIsSignalledFifteenTimesASecond) {
    const auto item = makeItem();
    registeredItem();
    QElapsedTimer timer;
    timer.start();
    int number = 0;
    EventLoop::runUntil([&] {
        item->setImage(picture(++number), "tool tip");
        return heard("NewIcon") == 10;
    });
    EXPECT_GE(timer.elapsed(), 9'000 / 15);
}

TEST_F(StatusNotifierItemTest, nothingIsSignalledWithoutAWatcher) {
    const auto item = makeItem();
    registeredItem();
    watcher.reset();
    ASSERT_TRUE(EventLoop::runUntil([&] { return area.isAvailable() == false; }));
    waitForPace();
    item->setImage(picture(1), "another");
    waitForPace();
    EXPECT_EQ(heard("NewIcon"), 0);
}

TEST_F(StatusNotifierItemTest, endedItemIsGoneFromTheBus) {
    auto item = makeItem();
    const auto name = registeredItem().toStdString();
    desktop::BusConnection asking(bus.address().toStdString());
    const desktop::ServiceOwner owner(asking, name, [] {});
    ASSERT_TRUE(EventLoop::runUntil([&] { return !owner.name().value_or("").empty(); }));
    item.reset();
    EXPECT_TRUE(EventLoop::runUntil([&] { return owner.name() == ""; }));
}

TEST(StatusNotifierItemAloneTest, keepsNobodyWaitingForABusThatHangs) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    {
        desktop::StatusNotifierItem item(silent.address(), {});
        item.setImage({QImage(1, 1, QImage::Format_ARGB32)}, "description");
        EXPECT_TRUE(silent.isConnectedTo());
    }
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
}

TEST(StatusNotifierItemAloneTest, doesNothingWithoutABus) {
    desktop::StatusNotifierItem item("", {});
    item.setImage({QImage(1, 1, QImage::Format_ARGB32)}, "description");
}

} // namespace
} // namespace vantoro::testing
