// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include "tests/control/event_loop.h"
#include "tests/ui/window/passage.h"

namespace vantoro::testing {
namespace {

using ColumnTest = Passage;

TEST_F(ColumnTest, bringsTheStatusIntoSightWhenItMatters) {
    const auto isInSight = [this] {
        const auto* const status = visible<StatusPanel>(*window).at(0);
        return status->visibleRegion().boundingRect() == status->rect();
    };
    const auto scrollAway = [this, isInSight] {
        auto* const bar = visible<QScrollArea>(*window).at(0)->verticalScrollBar();
        EXPECT_TRUE(EventLoop::runUntil([bar] { return bar->maximum() > 0; }));
        bar->setValue(bar->maximum());
        EXPECT_TRUE(EventLoop::runUntil([isInSight] { return !isInSight(); }));
    };
    setFont({"dejavu-16", "DejaVu Sans", 16}); // needs more than the least height
    showIn(Case::completed);
    window->resize(10, 10);
    scrollAway();
    model->startRecording();
    ASSERT_EQ(state(), Case::preparing);
    EXPECT_TRUE(EventLoop::runUntil(isInSight));
    scrollAway();
    scheduler.settle();
    ASSERT_EQ(state(), Case::recording);
    EXPECT_TRUE(EventLoop::runUntil(isInSight));
    scrollAway();
    interruptCapture();
    scheduler.settle();
    ASSERT_EQ(state(), Case::completed);
    recorder.startError = failure("no such luck");
    model->startRecording();
    scrollAway();
    scheduler.settle();
    ASSERT_EQ(state(), Case::failed);
    EXPECT_TRUE(EventLoop::runUntil(isInSight));
}

TEST_F(ColumnTest, setsTheColumnInTheMiddleOfALargeWindowWithoutHoles) {
    show();
    const auto gapOf = [this] {
        return placeIn(*window, *visible<Card>(*window).at(0)).top() -
               placeIn(*window, *visible<StatusPanel>(*window).at(0)).bottom();
    };
    const int gap = gapOf();
    const int height = visible<StatusPanel>(*window).at(0)->height();
    window->resize(1100, 950);
    settleEvents();
    EXPECT_EQ(gapOf(), gap);
    EXPECT_EQ(visible<StatusPanel>(*window).at(0)->height(), height);
    const auto status = placeIn(*window, *visible<StatusPanel>(*window).at(0));
    EXPECT_EQ(status.width(), 640);
    EXPECT_EQ(status.left(), (1100 - 640) / 2);
    EXPECT_EQ(visible<Card>(*window).at(1)->width(), 640);
}

} // namespace
} // namespace vantoro::testing
