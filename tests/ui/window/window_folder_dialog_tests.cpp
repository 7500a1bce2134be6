// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_folder_dialog.h"

#include <fstream>
#include <set>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/window/window_parts.h"

namespace vantoro::testing {
namespace {

using Answer = std::optional<std::filesystem::path>;

class WindowFolderDialogTest : public ::testing::Test {
protected:
    QTemporaryDir temporary;
    std::filesystem::path begin = temporary.path().toStdString();
    std::vector<Answer> answers;
    std::unique_ptr<WindowFolderDialog> panel = std::make_unique<WindowFolderDialog>();

    void choose(AppLanguage language = AppLanguage::english) {
        panel->choose({.title = "Choose Recording Folder",
                       .prompt = "Choose",
                       .directory = begin,
                       .language = language},
                      [this](const Answer& answer) { answers.push_back(answer); });
        // Waits for Qt's dialog; the test needs no desktop's.
        ASSERT_TRUE(QTest::qWaitFor([] { return dialog() != nullptr && dialog()->isVisible(); }));
    }

    static QFileDialog* dialog() {
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QFileDialog*>(widget)) {
                return found;
            }
        }
        return nullptr;
    }

    /// What the buttons and labels say, without the marks of access keys.
    static std::set<std::string> texts() {
        std::set<std::string> found;
        for (const auto* const button : visible<QPushButton>(*dialog())) {
            found.insert(button->text().remove('&').toStdString());
        }
        for (const auto* const label : visible<QLabel>(*dialog())) {
            found.insert(label->text().remove('&').toStdString());
        }
        return found;
    }

    void cancel() {
        const auto before = answers.size();
        QTest::keyClick(dialog(), Qt::Key_Escape);
        ASSERT_TRUE(waitForAnswer(answers, before + 1));
    }

    static bool waitForAnswer(const std::vector<Answer>& all, std::size_t count) {
        return QTest::qWaitFor([&] { return all.size() == count && dialog() == nullptr; });
    }
};

TEST_F(WindowFolderDialogTest, showsItsTextsAndStartsInItsFolder) {
    choose();
    EXPECT_EQ(dialog()->windowTitle(), "Choose Recording Folder");
    EXPECT_EQ(dialog()->labelText(QFileDialog::Accept), "Choose");
    EXPECT_EQ(dialog()->directory().path().toStdString(), begin.string());
    EXPECT_EQ(dialog()->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog()->isModal());
}

TEST_F(WindowFolderDialogTest, opensAtTheNearestFolderAboveOneThatIsMissing) {
    const auto existing = begin;
    std::ofstream(existing / "file") << "no folder";
    for (const auto* const missing : {"Vantoro", "Music/Vantoro", "file/Vantoro"}) {
        begin = existing / missing;
        choose();
        EXPECT_EQ(dialog()->directory().path().toStdString(), existing.string()) << missing;
        cancel();
    }
    begin = "/nowhere/at/all";
    choose();
    EXPECT_EQ(dialog()->directory().path(), "/");
    cancel();
    EXPECT_FALSE(std::filesystem::exists(existing / "Vantoro"));
}

TEST_F(WindowFolderDialogTest, speaksTheProgramsLanguage) {
    const std::set<std::string> english{"Look in:", "Directory:", "Choose", "Cancel"};
    choose();
    EXPECT_THAT(texts(), ::testing::IsSupersetOf(english));
    cancel();
    choose(AppLanguage::chinese);
    EXPECT_THAT(texts(), ::testing::IsSupersetOf({"目录：", "Choose", "取消"}));
    cancel();
    choose();
    EXPECT_THAT(texts(), ::testing::IsSupersetOf(english));
}

TEST_F(WindowFolderDialogTest, answersWithTheFolderThatIsChosen) {
    const auto chosen = begin / "Aufnahmen \xc3\xbc, two";
    std::filesystem::create_directory(chosen);
    choose();
    dialog()->setDirectory(QFile::decodeName(chosen.c_str()));
    dialog()->selectFile(QFile::decodeName(chosen.c_str()));
    QMetaObject::invokeMethod(dialog(), "accept");
    ASSERT_TRUE(waitForAnswer(answers, 1));
    EXPECT_EQ(answers[0], chosen);
}

TEST_F(WindowFolderDialogTest, answersWithNothingOnCancel) {
    choose();
    QTest::keyClick(dialog(), Qt::Key_Escape);
    ASSERT_TRUE(waitForAnswer(answers, 1));
    EXPECT_EQ(answers[0], std::nullopt);
}

TEST_F(WindowFolderDialogTest, asksOneQuestionAtATime) {
    choose();
    const auto* const first = dialog();
    choose();
    EXPECT_EQ(dialog(), first);
    QTest::keyClick(dialog(), Qt::Key_Escape);
    ASSERT_TRUE(waitForAnswer(answers, 1));
    choose();
    EXPECT_TRUE(dialog()->isVisible());
}

TEST_F(WindowFolderDialogTest, closesItsDialogOnDestruction) {
    choose();
    panel.reset();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(answers.empty());
}

} // namespace
} // namespace vantoro::testing
