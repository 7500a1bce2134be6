// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_size.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>

#include "tests/ui/window/passage.h"

namespace vantoro::testing {
namespace {

TEST(WindowSizeTest, isReadAsItWasWritten) {
    EXPECT_EQ(textOf({640, 720}), "640x720");
    EXPECT_EQ(sizeOf(textOf({640, 720})), QSize(640, 720));
    EXPECT_EQ(sizeOf("1x32767"), QSize(1, 32767));
}

TEST(WindowSizeTest, isNoneIfTheTextIsNoSize) {
    for (const std::string text :
         {"", "x", "640", "640x", "x720", "640x720x1", "640 x 720", "0x720", "-640x720",
          "640x32768", "640x99999999999999999999", "axb"}) {
        EXPECT_EQ(sizeOf(text), std::nullopt) << text;
    }
}

TEST(WindowSizeTest, isTheUsersOrElseTheNeededAsFarAsTheScreenGoes) {
    const QSize needed(500, 620);
    const QSize screen(1920, 1040);

    struct Row {
        std::optional<QSize> remembered;
        QSize needed;
        QSize screen;
        QSize opens;
    };

    for (const auto& [remembered, wanted, room, opens] : {
             Row{std::nullopt, needed, screen, needed},
             Row{QSize(900, 800), needed, screen, QSize(900, 800)},
             Row{QSize(480, 590), needed, screen, QSize(480, 590)},
             Row{QSize(2500, 1400), needed, screen, QSize(1920, 1000)},
             Row{std::nullopt, QSize(500, 1300), QSize(1366, 728), QSize(500, 688)},
         }) {
        EXPECT_EQ(openingSize(remembered, wanted, room), opens);
    }
}

/// Of the window.
class RememberedSizeTest : public Passage {
protected:
    std::optional<std::string> stored() const { return preferences.get(Preference::windowSize); }

    void resizeByUser(const QSize& size) {
        window->resize(size);
        ASSERT_TRUE(QTest::qWaitFor([&] { return stored() == textOf(size); }, patience));
    }
};

TEST_F(RememberedSizeTest, isWhatTheUserGaveTheWindow) {
    show();
    resizeByUser({700, 800});
    MainWindowTest::TearDown();
    show();
    EXPECT_EQ(window->size(), QSize(700, 800));
    resizeByUser({600, 640});
    resizeByUser({700, 800});
}

TEST_F(RememberedSizeTest, isStoredAtOnceWhenTheWindowIsHidden) {
    show();
    window->resize(700, 800);
    window->hide();
    EXPECT_EQ(stored(), "700x800");
}

TEST_F(RememberedSizeTest, isNoneUntilTheUserChangesIt) {
    show();
    window->hide();
    EXPECT_EQ(stored(), std::nullopt);
}

TEST_F(RememberedSizeTest, isNotThatOfTheWholeScreen) {
    show();
    window->showMaximized();
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->width() > 1000; }, patience));
    window->hide();
    EXPECT_EQ(stored(), std::nullopt);
}

TEST_F(RememberedSizeTest, isWrittenOnceForEachChange) {
    preferences.values[Preference::windowSize] = "700x800";
    show();
    window->hide();
    EXPECT_TRUE(preferences.stored.empty());
}

TEST_F(RememberedSizeTest, isNoSizeIfTheFileIsDamaged) {
    preferences.values[Preference::windowSize] = "wide";
    show();
    EXPECT_EQ(window->centralWidget()->size(), QSize(500, 600));
}

class GrowingTest : public Passage {
protected:
    void SetUp() override {
        Passage::SetUp();
        setFont({"dejavu", "DejaVu Sans", 16});
    }

    int neededHeight() const {
        return window->centralWidget()->sizeHint().height() + window->menuBar()->height();
    }
};

TEST_F(GrowingTest, followsALanguageThatNeedsMore) {
    openIn("zh-Hans");
    const auto before = window->height();
    EXPECT_EQ(before, neededHeight());
    language->setLanguage(AppLanguage::english);
    settleEvents();
    EXPECT_GT(window->height(), before);
    EXPECT_EQ(window->height(), neededHeight());
}

TEST_F(GrowingTest, leavesAWindowAloneThatItsUserResized) {
    openIn("zh-Hans");
    window->resize(500, 650);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return preferences.get(Preference::windowSize).has_value(); }, patience));
    language->setLanguage(AppLanguage::english);
    settleEvents();
    EXPECT_EQ(window->size(), QSize(500, 650));
}

} // namespace
} // namespace vantoro::testing
