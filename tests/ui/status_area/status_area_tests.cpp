// SPDX-License-Identifier: GPL-3.0-or-later

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <QtGui/QImage>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/support/fake_status_area.h"
#include "ui/status_area/substituted_status_area.h"
#include "ui/status_area/tray_icon_area.h"

namespace vantoro::testing {
namespace {

class SubstitutedStatusAreaTest : public ::testing::Test {
protected:
    FakeStatusArea first;
    FakeStatusArea substitute;
    SubstitutedStatusArea area{first, substitute};
    StatusImage image{QImage(1, 1, QImage::Format_ARGB32)};
    std::vector<std::string> clicks;

    SubstitutedStatusAreaTest() {
        image[0].fill(Qt::red);
        substitute.available = true;
    }

    std::unique_ptr<StatusItem> makeItem() {
        return area.makeItem(
            {.identifier = "identifier",
             .toolTip = "tool tip",
             .clicked = [this](const std::string& token) { clicks.push_back(token); }});
    }
};

TEST_F(SubstitutedStatusAreaTest, usesOnlyTheFirstWhileItMayAppear) {
    const auto item = makeItem();
    EXPECT_EQ(area.isAvailable(), std::nullopt);
    EXPECT_EQ(first.items.size(), 1U);
    EXPECT_TRUE(substitute.items.empty());
    first.setAvailable(true);
    EXPECT_EQ(area.isAvailable(), true);
    EXPECT_TRUE(substitute.items.empty());
}

TEST_F(SubstitutedStatusAreaTest, usesTheSubstituteWhileTheFirstIsUnavailable) {
    const auto item = makeItem();
    item->setImage(image, "description");
    item->setToolTipDetail("detail");
    item->setMenu({{.label = "Row"}});
    first.setAvailable(false);
    ASSERT_EQ(substitute.items.size(), 1U);
    EXPECT_EQ(substitute.items[0]->traits.identifier, "identifier");
    EXPECT_EQ(substitute.items[0]->traits.toolTip, "tool tip");
    EXPECT_EQ(substitute.items[0]->image, image);
    EXPECT_EQ(substitute.items[0]->description, "description");
    EXPECT_EQ(substitute.items[0]->toolTipDetail, "detail");
    EXPECT_EQ(substitute.items[0]->menu, StatusMenu{{.label = "Row"}});
    first.setAvailable(true);
    EXPECT_TRUE(substitute.items.empty());
    EXPECT_EQ(first.items.size(), 1U);
}

TEST_F(SubstitutedStatusAreaTest, laterItemUsesTheSubstituteToo) {
    first.setAvailable(false);
    const auto item = makeItem();
    EXPECT_EQ(substitute.items.size(), 1U);
}

TEST_F(SubstitutedStatusAreaTest, everythingReachesBoth) {
    first.setAvailable(false);
    const auto item = makeItem();
    item->setImage(image, "description");
    item->setToolTipDetail("detail");
    item->setMenu({{.label = "Row"}});
    for (const auto* const shown : {first.items.at(0), substitute.items.at(0)}) {
        EXPECT_EQ(shown->toolTipDetail, "detail");
        EXPECT_EQ(shown->menu, StatusMenu{{.label = "Row"}});
    }
    EXPECT_EQ(first.items.at(0)->image, image);
    EXPECT_EQ(substitute.items.at(0)->image, image);
}

TEST_F(SubstitutedStatusAreaTest, clickOnEitherCounts) {
    first.setAvailable(false);
    const auto item = makeItem();
    first.items.at(0)->traits.clicked("one");
    substitute.items.at(0)->traits.clicked("other");
    EXPECT_EQ(clicks, (std::vector<std::string>{"one", "other"}));
}

TEST_F(SubstitutedStatusAreaTest, isAvailableAsTheOneThatShows) {
    first.setAvailable(false);
    EXPECT_EQ(area.isAvailable(), true);
    substitute.setAvailable(false);
    EXPECT_EQ(area.isAvailable(), false);
    first.setAvailable(true);
    EXPECT_EQ(area.isAvailable(), true);
}

TEST_F(SubstitutedStatusAreaTest, tellsOfEveryChange) {
    int changes = 0;
    area.setAvailabilityChanged([&] { ++changes; });
    first.setAvailable(false);
    EXPECT_EQ(changes, 1);
    substitute.setAvailable(false);
    EXPECT_EQ(changes, 2);
}

TEST_F(SubstitutedStatusAreaTest, endedItemIsInNeither) {
    first.setAvailable(false);
    makeItem().reset();
    EXPECT_TRUE(first.items.empty());
    EXPECT_TRUE(substitute.items.empty());
    first.setAvailable(true);
}

TEST(TrayIconAreaTest, isAvailableIfTheToolkitSaysSo) {
    TrayIconArea area;
    EXPECT_EQ(area.isAvailable(), QSystemTrayIcon::isSystemTrayAvailable());
    const auto item = area.makeItem({.identifier = "i", .toolTip = "t", .clicked = {}});
    item->setImage({QImage(16, 16, QImage::Format_ARGB32)}, "description");
}

/// The only menu of the program.
QMenu& trayMenu() {
    for (auto* const widget : QApplication::topLevelWidgets()) {
        if (auto* const found = qobject_cast<QMenu*>(widget)) {
            return *found;
        }
    }
    throw std::runtime_error("there is no menu");
}

TEST(TrayIconAreaTest, menuHasItsRowsAndTellsOfTheChoice) {
    TrayIconArea area;
    std::vector<StatusAreaCommand> choices;
    const auto item = area.makeItem(
        {.identifier = "i",
         .toolTip = "t",
         .clicked = {},
         .chosen = [&](StatusAreaCommand command, const auto&) { choices.push_back(command); }});
    item->setMenu(
        {{.command = StatusAreaCommand::startRecording, .label = "Start", .isEnabled = false},
         {.command = StatusAreaCommand::quit, .label = "Quit", .startsGroup = true}});
    const auto actions = trayMenu().actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "Start");
    EXPECT_FALSE(actions[0]->isEnabled());
    EXPECT_TRUE(actions[1]->isSeparator());
    actions[2]->trigger();
    EXPECT_TRUE(choices.empty());
    EXPECT_TRUE(EventLoop::runUntil([&] { return !choices.empty(); }));
    EXPECT_EQ(choices, std::vector{StatusAreaCommand::quit});
}

} // namespace
} // namespace vantoro::testing
