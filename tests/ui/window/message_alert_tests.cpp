// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/message_alert.h"

#include <QtWidgets/QAbstractButton>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

class MessageAlertTest : public MainWindowTest {
protected:
    std::vector<std::string> buttons() const {
        std::vector<std::string> texts;
        for (const auto* const button : alert()->buttons()) {
            texts.push_back(button->text().toStdString());
        }
        std::ranges::sort(texts);
        return texts;
    }

    void press(const QString& text) const {
        for (auto* const button : alert()->buttons()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        FAIL() << "no button " << text.toStdString();
    }
};

using ErrorAlertTest = MessageAlertTest;
using UpdateAlertTest = MessageAlertTest;

TEST_F(ErrorAlertTest, isShownWhileThereIsAMessage) {
    show();
    EXPECT_EQ(alert(), nullptr);
    fail("no such luck");
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->windowTitle(), "Vantoro");
    EXPECT_EQ(alert()->text(), "no such luck");
    EXPECT_EQ(buttons(), std::vector<std::string>{"OK"});
    EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
    model->dismissMessage();
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(ErrorAlertTest, isShownForAMessageOlderThanTheWindow) {
    showIn(Case::failed);
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), "no such luck");
}

TEST_F(ErrorAlertTest, clearsTheMessageHoweverItIsDismissed) {
    const std::vector<std::function<void()>> ways{
        [this] { press("OK"); },
        [this] { QTest::keyClick(alert(), Qt::Key_Escape); },
        [this] { QTest::keyClick(alert(), Qt::Key_Return); },
        [this] { alert()->close(); },
    };
    show();
    for (const auto& dismiss : ways) {
        fail("no such luck");
        ASSERT_NE(alert(), nullptr);
        dismiss();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !values().errorMessage; }, patience));
        EXPECT_EQ(alert(), nullptr);
        EXPECT_EQ(state(), Case::failed);
    }
}

TEST_F(ErrorAlertTest, givesWayToANewMessage) {
    show();
    fail("one");
    fail("another");
    settleEvents();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), "another");
    EXPECT_EQ(message(), "another");
}

TEST(MessageAlertTextTest, showsTheLatestMessage) {
    QWidget window;
    window.show();
    MessageAlert alert(window, [] {});
    const MessageAlert::Texts texts{.title = "Title", .ok = "OK", .action = QString()};
    alert.show("one", texts);
    alert.show("another", texts);
    const auto open = visible<QMessageBox>(window);
    ASSERT_EQ(open.size(), 1U);
    EXPECT_EQ(open.front()->text(), "another");
}

TEST_F(ErrorAlertTest, keepsAMessageThatArrivesDuringDismissal) {
    show();
    fail("one");
    press("OK");
    fail("another");
    settleEvents();
    EXPECT_EQ(message(), "another");
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), "another");
}

TEST_F(ErrorAlertTest, showsTheSameMessageAgainAfterItWasDismissed) {
    show();
    fail("one");
    press("OK");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !values().errorMessage; }, patience));
    fail("one");
    settleEvents();
    EXPECT_NE(alert(), nullptr);
    EXPECT_EQ(message(), "one");
}

TEST_F(ErrorAlertTest, showsMarkupAsItIs) {
    show();
    fail("<b>bold</b><img src='file:///etc/hostname'>");
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->textFormat(), Qt::PlainText);
    for (const auto* const label : visible<QLabel>(*alert())) {
        EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
    }
    EXPECT_TRUE(isSeen(*alert(), "<b>bold</b><img src='file:///etc/hostname'>"));
}

TEST_F(ErrorAlertTest, closesWithTheWindow) {
    show();
    fail("no such luck");
    const QPointer<QMessageBox> open = alert();
    window.reset();
    EXPECT_EQ(open, nullptr);
    EXPECT_EQ(message(), "no such luck");
}

TEST_F(UpdateAlertTest, offersWhatWasFound) {
    show();
    checkForUpdates();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->windowTitle(), "Check for Updates");
    EXPECT_EQ(alert()->text().toStdString(), updates->values().message);
    EXPECT_EQ(alert()->textFormat(), Qt::PlainText);
    EXPECT_EQ(buttons(), (std::vector<std::string>{"Download Update", "OK"}));
    press("OK");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !updates->values().message; }, patience));
    EXPECT_EQ(alert(), nullptr);
    EXPECT_TRUE(opened.empty());
}

TEST_F(UpdateAlertTest, opensTheDownloadAndThenClearsTheMessage) {
    show();
    checkForUpdates();
    press("Download Update");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !updates->values().message; }, patience));
    EXPECT_EQ(opened, std::vector<QUrl>{*updates->values().downloadURL});
    EXPECT_EQ(hadMessage, std::vector<bool>{true});
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(UpdateAlertTest, hasNothingToDownloadWhereNothingIsNewer) {
    answer = always(response(200, R"({"version":"1.0","filename":"Vantoro-1.0.tar.gz"})"));
    show();
    checkForUpdates();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), "You are up to date.");
    EXPECT_EQ(buttons(), std::vector<std::string>{"OK"});
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !updates->values().message; }, patience));
}

TEST_F(UpdateAlertTest, isOpenedOnce) {
    show();
    std::vector<QMessageBox*> seen;
    QObject::connect(updates.get(), &UpdateChecker::propertyChanged, window.get(), [&] {
        if (auto* const open = alert(); open != nullptr) {
            seen.push_back(open);
        }
    });
    checkForUpdates();
    ASSERT_EQ(seen.size(), 2U); // the message has arrived, and the check has ended
    EXPECT_EQ(seen.at(0), seen.at(1));
}

TEST_F(UpdateAlertTest, speaksAnotherLanguageAtOnce) {
    show();
    checkForUpdates();
    language->setLanguage(AppLanguage::chinese);
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->windowTitle(), "检查更新");
    EXPECT_EQ(buttons(), (std::vector<std::string>{"下载更新", "好"}));
}

} // namespace
} // namespace vantoro::testing
