// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/main_window.h"

#include <QtGui/QActionGroup>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QToolButton>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

using Entries = std::vector<std::string>;

/// A menu's texts, with the marks of each entry.
Entries entriesOf(const QMenu& menu) {
    Entries entries;
    for (const auto* const action : menu.actions()) {
        entries.push_back(action->isSeparator() ? "-"
                                                : (action->text() + (action->menu() ? " >" : "") +
                                                   (action->isChecked() ? " (chosen)" : "") +
                                                   (action->isEnabled() ? "" : " (off)"))
                                                      .toStdString());
    }
    return entries;
}

class MenuTest : public MainWindowTest {
protected:
    QMenu& menu() const { return *window->menuBar()->actions().at(0)->menu(); }

    QMenu& languageMenu() const { return *menu().actions().at(0)->menu(); }

    QAction& checkCommand() const { return *menu().actions().at(2); }
};

TEST_F(MenuTest, offersLanguagesUpdatesAndTheEnd) {
    show();
    ASSERT_EQ(window->menuBar()->actions().size(), 1);
    EXPECT_EQ(window->menuBar()->actions().at(0)->text(), "&Vantoro");
    EXPECT_EQ(entriesOf(menu()), (Entries{"&Language >", "-", "Check for &Updates",
                                          "Version 1.0 (off)", "-", "&Close", "&Quit"}));
    EXPECT_EQ(entriesOf(languageMenu()), (Entries{"中文", "English (chosen)"}));
}

TEST_F(MenuTest, choosesOneLanguageAndShowsItAtOnce) {
    show();
    languageMenu().actions().at(0)->trigger();
    EXPECT_EQ(preferences.values.at(Preference::appLanguage), "zh-Hans");
    EXPECT_EQ(entriesOf(languageMenu()), (Entries{"中文 (chosen)", "English"}));
    EXPECT_EQ(entriesOf(menu()), (Entries{"语言(&L) >", "-", "检查更新(&U)", "当前版本 1.0 (off)",
                                          "-", "关闭(&C)", "退出(&Q)"}));
    // Choosing the current language keeps it checked.
    languageMenu().actions().at(0)->trigger();
    EXPECT_EQ(entriesOf(languageMenu()), (Entries{"中文 (chosen)", "English"}));
}

TEST_F(MenuTest, followsALanguageThatIsChosenElsewhere) {
    show();
    language->setLanguage(AppLanguage::chinese);
    EXPECT_EQ(entriesOf(languageMenu()), (Entries{"中文 (chosen)", "English"}));
    EXPECT_EQ(languageMenu().title(), "语言(&L)");
}

TEST_F(MenuTest, checksForUpdatesOneAtATime) {
    answer = [](QSslSocket&, const QByteArray&) {};
    show();
    checkCommand().trigger();
    EXPECT_FALSE(checkCommand().isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([this] { return server.requests.size() == 1; }, patience));
    EXPECT_EQ(entriesOf(menu()).at(2), "Check for &Updates (off)");
    EXPECT_EQ(entriesOf(menu()).at(3), "Version 1.0 (off)");
}

TEST_F(MenuTest, checksForUpdatesAgainAfterwards) {
    show();
    checkCommand().trigger();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !updates->values().isChecking; }, patience));
    EXPECT_TRUE(checkCommand().isEnabled());
    EXPECT_EQ(entriesOf(menu()).at(3), "Version 1.0 (off)");
}

TEST_F(MenuTest, endsTheProgramThroughWhoeverMadeTheWindow) {
    show();
    const QSignalSpy quit(window.get(), &MainWindow::quitRequested);
    menu().actions().last()->trigger();
    EXPECT_EQ(quit.count(), 1);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, obeysItsShortcuts) {
    show();
    QTest::keyClick(window.get(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(state(), Case::preparing);
    scheduler.settle();
    EXPECT_EQ(state(), Case::recording);
    QTest::keyClick(window.get(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(state(), Case::processing);
    scheduler.settle();

    const auto looked = devices.readings;
    QTest::keyClick(window.get(), Qt::Key_F5);
    scheduler.settle();
    EXPECT_EQ(devices.readings, looked + 1);

    const QSignalSpy quit(window.get(), &MainWindow::quitRequested);
    QTest::keyClick(window.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quit.count(), 1);
}

TEST_F(MainWindowTest, doesNotCloseItself) {
    show();
    const QSignalSpy close(window.get(), &MainWindow::closeRequested);
    EXPECT_FALSE(window->close());
    EXPECT_EQ(close.count(), 1);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindowTest, looksAtDevicesWhenTheUserComesBackToIt) {
    show();
    settleEvents();
    EXPECT_EQ(scheduler.waitingTasks(), 0U); // not on first activation
    QWidget another;
    another.show();
    another.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&another, patience));
    EXPECT_EQ(scheduler.waitingTasks(), 0U); // nor when the user leaves
    const auto looked = devices.readings;
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), patience));
    scheduler.settle();
    EXPECT_EQ(devices.readings, looked + 1);
}

/// All texts of the window and its menus, visible or accessible, without keys.
std::vector<QString> textsOf(const QWidget& root) {
    std::vector<QString> texts;
    for (const auto* const widget : root.findChildren<QWidget*>()) {
        texts.insert(texts.end(), {widget->accessibleName(), widget->accessibleDescription(),
                                   widget->toolTip().section(" (", 0, 0)});
    }
    for (const auto* const label : root.findChildren<QLabel*>()) {
        texts.push_back(label->text());
    }
    for (const auto* const button : root.findChildren<QAbstractButton*>()) {
        texts.push_back(button->text());
    }
    for (const auto* const action : root.findChildren<QAction*>()) {
        texts.push_back(action->text().remove('&'));
    }
    return texts;
}

TEST_F(MainWindowTest, switchesEveryTextToAnotherLanguageAtOnce) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::notDetermined;
    for (const auto state :
         {Case::idle, Case::preparing, Case::recording, Case::processing, Case::completed}) {
        model.reset();
        preferences = preferencesIn("en");
        showIn(state);
        std::map<QString, L10n::Key> before;
        for (const auto& [key, text] : L10n::english()) {
            if (L10n::chinese().at(key) != text) {
                before[QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))] = key;
            }
        }
        const auto wordsBefore = [&] {
            std::vector<std::string> words;
            for (const auto& text : textsOf(*window)) {
                if (before.contains(text)) {
                    words.push_back(text.toStdString());
                }
            }
            return words;
        };
        EXPECT_GT(wordsBefore().size(), 20U);
        language->setLanguage(AppLanguage::chinese);
        EXPECT_EQ(wordsBefore(), Entries{});
        TearDown();
    }
}

} // namespace
} // namespace vantoro::testing
