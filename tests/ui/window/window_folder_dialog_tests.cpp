// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/window_folder_dialog.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using Answer = std::optional<std::filesystem::path>;

class WindowFolderDialogTest : public ::testing::Test {
protected:
    QTemporaryDir temporary;
    std::filesystem::path begin = temporary.path().toStdString();
    std::vector<Answer> answers;
    std::unique_ptr<WindowFolderDialog> panel = std::make_unique<WindowFolderDialog>();

    void choose() {
        panel->choose({.title = "Choose Recording Folder", .prompt = "Choose", .directory = begin},
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
