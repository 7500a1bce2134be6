// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/displays.h"

#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(DisplaysTest, identifiersStayTheSameAndDiffer) {
    const auto one = desktop::displaysOf({"HDMI-1\n17", "DP-1\n"});
    EXPECT_EQ(one, desktop::displaysOf({"HDMI-1\n17", "DP-1\n"}));
    EXPECT_NE(one.at(0), one.at(1));
    const auto swapped = desktop::displaysOf({"DP-1\n", "HDMI-1\n17"});
    EXPECT_EQ(one.at(0), swapped.at(1));
    EXPECT_EQ(one.at(1), swapped.at(0));
}

TEST(DisplaysTest, screensThatCannotBeToldApartAreStillTwo) {
    const auto twins = desktop::displaysOf({"same", "same", "same"});
    std::set<std::uint32_t> identifiers;
    for (const auto& display : twins) {
        identifiers.insert(display.displayID);
    }
    EXPECT_EQ(identifiers.size(), 3);
}

TEST(DisplaysTest, headlessMachineHasOneVirtualDisplay) {
    desktop::DesktopDisplays displays;
    EXPECT_EQ(displays.displays(), std::vector<Display>{{.displayID = 1}});
    EXPECT_EQ(displays.mainDisplayID(), 1);
}

TEST(DisplaysTest, applicationWithoutWindowsHasOneVirtualDisplay) {
    int argumentCount = 1;
    std::string program = "test";
    char* arguments[] = {program.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments);
    desktop::DesktopDisplays displays;
    EXPECT_EQ(displays.mainDisplayID(), 1);
}

/// An application on a window system with two screens.
class ScreensTest : public ::testing::Test {
protected:
    static constexpr const char* screens = R"({"screens": [
        {"name": "first", "x": 0, "y": 0, "width": 800, "height": 600},
        {"name": "second", "x": 800, "y": 0, "width": 640, "height": 480}]})";
    QTemporaryDir folder;
    std::unique_ptr<QGuiApplication> application;

    void SetUp() override {
        QFile file(folder.filePath("screens.json"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(screens);
        file.close();
        platform_ = "offscreen:configfile=" + file.fileName().toStdString();
        arguments_ = {program_.data(), option_.data(), platform_.data(), nullptr};
        application = std::make_unique<QGuiApplication>(argumentCount_, arguments_.data());
        ASSERT_EQ(QGuiApplication::screens().size(), 2);
    }

    /// What the work returns on another thread, while the application's event loop runs here.
    template <class Work>
    static auto onAnotherThread(Work work) {
        QEventLoop loop;
        std::packaged_task<decltype(work())()> task(std::move(work));
        auto result = task.get_future();
        const std::jthread thread([&] {
            task();
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        });
        loop.exec();
        return result.get();
    }

private:
    std::string program_ = "test";
    std::string option_ = "-platform";
    std::string platform_;
    int argumentCount_ = 3;
    std::vector<char*> arguments_;
};

TEST_F(ScreensTest, eachIsADisplayAndThePrimaryOneTheMain) {
    desktop::DesktopDisplays displays;
    const auto found = displays.displays();
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found, desktop::displaysOf({"first\n", "second\n"}));
    ASSERT_EQ(QGuiApplication::primaryScreen()->name(), "first");
    EXPECT_EQ(displays.mainDisplayID(), found.front().displayID);
}

TEST_F(ScreensTest, areLearntOnAnyThreadWhileTheApplicationRuns) {
    desktop::DesktopDisplays displays;
    const auto here = displays.displays();
    EXPECT_EQ(onAnotherThread([&] { return displays.displays(); }), here);
    EXPECT_EQ(onAnotherThread([&] { return displays.mainDisplayID(); }), displays.mainDisplayID());
}

TEST_F(ScreensTest, areNotWaitedForLongerThanTheLimit) {
    desktop::DesktopDisplays displays{std::chrono::milliseconds(20)};
    QElapsedTimer timer;
    timer.start();
    // No event loop runs here meanwhile, as in an application that hangs.
    auto result = std::async(std::launch::async, [&] { return displays.displays(); });
    EXPECT_THROW(result.get(), std::runtime_error);
    EXPECT_LT(timer.elapsed(), 10'000);
    QCoreApplication::processEvents(); // the late answer goes nowhere
}

} // namespace
} // namespace vantoro::testing
