// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/item_menu.h"

#include <optional>
#include <string>
#include <vector>

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/status_area/status_notifier_fixture.h"

namespace vantoro::testing {
namespace {

using desktop::MenuNode;
using desktop::menuNodes;

const StatusMenu usualMenu{
    {.command = StatusAreaCommand::showWindow, .label = "Show"},
    {.command = StatusAreaCommand::startRecording, .label = "Start_now", .isEnabled = false},
    {.command = StatusAreaCommand::quit, .label = "Quit", .startsGroup = true}};

constexpr int showID = 1;
constexpr int startID = 2;
constexpr int stopID = 3;
constexpr int quitID = 4;

TEST(MenuNodesTest, idsFollowFromTheCommands) {
    const auto before =
        menuNodes({{.command = StatusAreaCommand::startRecording, .label = "Start"}});
    const auto after = menuNodes({{.command = StatusAreaCommand::stopRecording, .label = "Stop"}});
    EXPECT_EQ(before, (std::vector<MenuNode>{{.id = startID, .label = "Start"}}));
    EXPECT_EQ(after, (std::vector<MenuNode>{{.id = stopID, .label = "Stop"}}));
}

TEST(MenuNodesTest, lineIsBetweenGroupsOnly) {
    const StatusMenuRow quit{
        .command = StatusAreaCommand::quit, .label = "Quit", .startsGroup = true};
    EXPECT_EQ(menuNodes({quit}).size(), 1U);
    const auto nodes =
        menuNodes({{.command = StatusAreaCommand::showWindow, .label = "Show"}, quit});
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_TRUE(nodes[1].isSeparator);
    EXPECT_NE(nodes[1].id, nodes[2].id);
    EXPECT_TRUE(menuNodes({}).empty());
}

/// A row, or the menu itself, as a panel reads it.
struct ReadNode {
    int id = 0;
    QVariantMap properties;
    std::vector<ReadNode> children;
};

ReadNode readNode(const QDBusArgument& argument) {
    ReadNode node;
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        node.children.push_back(readNode(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return node;
}

/// With one item that has a menu.
class ItemMenuTest : public StatusNotifierTest {
protected:
    TestWatcher watcher{bus};
    std::unique_ptr<StatusItem> item = makeItem();
    QString name;

    ItemMenuTest() {
        item->setMenu(usualMenu);
        EXPECT_TRUE(EventLoop::runUntil([&] { return !watcher.items().isEmpty(); }));
        name = watcher.items().value(0);
    }

    QDBusMessage ask(const QString& method, const QVariantList& arguments) {
        return call(name, "com.canonical.dbusmenu", method, arguments, "/MenuBar");
    }

    ReadNode layout(int parent = 0, int depth = -1, const QStringList& names = {}) {
        const auto reply = ask("GetLayout", {parent, depth, names});
        EXPECT_EQ(reply.signature(), "u(ia{sv}av)") << reply.errorMessage().toStdString();
        return readNode(reply.arguments().value(1).value<QDBusArgument>());
    }

    QDBusMessage happen(int id, const QString& what) {
        return ask("Event", {id, what, QVariant::fromValue(QDBusVariant(0)), 0U});
    }

    /// Runs what is pending: calls are answered in order.
    void settle() {
        ask("AboutToShow", {0});
        QCoreApplication::processEvents();
    }

    static QVariant arrayOf(const std::vector<int>& numbers) {
        return QVariant::fromValue(QList<int>(numbers.begin(), numbers.end()));
    }
};

TEST_F(ItemMenuTest, panelReadsTheRows) {
    const auto menu = layout();
    EXPECT_EQ(menu.id, 0);
    EXPECT_EQ(menu.properties["children-display"], "submenu");
    ASSERT_EQ(menu.children.size(), 4U);
    EXPECT_EQ(menu.children[0].id, showID);
    EXPECT_EQ(menu.children[0].properties["label"], "Show");
    EXPECT_EQ(menu.children[0].properties["enabled"], true);
    EXPECT_EQ(menu.children[1].id, startID);
    EXPECT_EQ(menu.children[1].properties["label"], "Start__now"); // not an access key
    EXPECT_EQ(menu.children[1].properties["enabled"], false);
    EXPECT_EQ(menu.children[2].properties["type"], "separator");
    EXPECT_EQ(menu.children[3].id, quitID);
}

TEST_F(ItemMenuTest, panelReadsOnlyWhatItAsksFor) {
    EXPECT_TRUE(layout(0, 0).children.empty());
    EXPECT_EQ(layout(0, 1).children.size(), 4U);
    EXPECT_EQ(layout(quitID).properties["label"], "Quit");
    EXPECT_TRUE(layout(quitID).children.empty());
    EXPECT_EQ(layout(startID, -1, {"enabled"}).properties, QVariantMap({{"enabled", false}}));
    EXPECT_EQ(ask("GetLayout", {77, -1, QStringList()}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(ItemMenuTest, panelReadsPropertiesOfSingleRows) {
    const auto label = ask("GetProperty", {quitID, "label"}).arguments().value(0);
    EXPECT_EQ(label.value<QDBusVariant>().variant(), "Quit");
    EXPECT_EQ(ask("GetProperty", {quitID, "icon-name"}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(ask("GetProperty", {77, "label"}).type(), QDBusMessage::ErrorMessage);

    const auto reply = ask("GetGroupProperties", {arrayOf({showID, quitID, 77}), QStringList()});
    const auto rows = reply.arguments().value(0).value<QDBusArgument>();
    ASSERT_EQ(rows.currentSignature(), "a(ia{sv})");
    std::vector<int> ids;
    rows.beginArray();
    while (!rows.atEnd()) {
        QVariantMap properties;
        rows.beginStructure();
        rows >> ids.emplace_back() >> properties;
        rows.endStructure();
        EXPECT_EQ(properties["enabled"], true);
    }
    rows.endArray();
    EXPECT_EQ(ids, (std::vector{showID, quitID}));
}

TEST_F(ItemMenuTest, clickOnARowIsItsCommandWithThePanelsToken) {
    callItem(name, "ProvideXdgActivationToken", {"token"});
    EXPECT_EQ(happen(showID, "clicked").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(happen(quitID, "clicked").type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(EventLoop::runUntil([&] { return choices.size() == 2; }));
    EXPECT_EQ(choices,
              (std::vector<std::pair<StatusAreaCommand, std::string>>{
                  {StatusAreaCommand::showWindow, "token"}, {StatusAreaCommand::quit, ""}}));
    EXPECT_TRUE(clicks.isEmpty());
}

TEST_F(ItemMenuTest, nothingElseIsACommand) {
    EXPECT_EQ(happen(showID, "hovered").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(happen(0, "opened").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(happen(startID, "clicked").type(), QDBusMessage::ReplyMessage); // disabled
    EXPECT_EQ(happen(stopID, "clicked").type(), QDBusMessage::ErrorMessage);  // of an earlier menu
    settle();
    EXPECT_TRUE(choices.empty());
}

TEST_F(ItemMenuTest, onlyAnotherMenuIsSignalled) {
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("LayoutUpdated") == 1; }));
    item->setMenu(usualMenu);
    auto other = usualMenu;
    other[1] = {.command = StatusAreaCommand::stopRecording, .label = "Stop"};
    item->setMenu(other);
    ASSERT_TRUE(EventLoop::runUntil([&] { return heard("LayoutUpdated") == 2; }));
    EXPECT_EQ(layout().children.at(1).id, stopID);
    EXPECT_EQ(heard("LayoutUpdated"), 2);
}

TEST_F(ItemMenuTest, revisionRisesWithEachMenu) {
    const auto before = ask("GetLayout", {0, 0, QStringList()}).arguments().value(0).toUInt();
    item->setMenu({});
    const auto after = ask("GetLayout", {0, 0, QStringList()}).arguments().value(0).toUInt();
    EXPECT_GT(after, before);
    EXPECT_TRUE(layout().children.empty());
}

TEST_F(ItemMenuTest, choiceMayDestroyTheItem) {
    int count = 0;
    item = area.makeItem({.identifier = "another",
                          .toolTip = "",
                          .clicked = {},
                          .chosen = [&](StatusAreaCommand, const auto&) {
                              ++count;
                              item.reset();
                          }});
    item->setMenu(usualMenu);
    ASSERT_TRUE(EventLoop::runUntil([&] { return watcher.items().size() == 2; }));
    name = watcher.items().value(1);
    happen(quitID, "clicked");
    EXPECT_TRUE(EventLoop::runUntil([&] { return item == nullptr; }));
    EXPECT_EQ(count, 1);
}

} // namespace
} // namespace vantoro::testing
