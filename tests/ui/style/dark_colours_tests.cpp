// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/dark_colours.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "tests/ui/style/dark_toolkit.h"
#include "tests/ui/window/main_window_fixture.h"
#include "ui/style/tones.h"

namespace vantoro::testing {
namespace {

class DarkColoursTest : public MainWindowTest {
protected:
    DarkColours colours;

    void TearDown() override {
        MainWindowTest::TearDown();
        QApplication::setPalette(QPalette());
    }

    void prefer(bool dark) {
        colours.prefer(dark);
        settleEvents();
    }

    /// The colour beside the column.
    QColor ground() const {
        const auto picture = window->grab().toImage();
        return picture.pixelColor(picture.width() - 3, picture.height() / 2);
    }
};

TEST_F(DarkColoursTest, turnTheOpenWindowDarkAndLightAgain) {
    showIn(Case::recording);
    const auto light = ground();
    for (int turn = 0; turn < 2; ++turn) {
        prefer(true);
        EXPECT_EQ(ground(), QColor(0x323232));
        for (const auto* const label : visible<QLabel>(*window)) {
            const auto ink = label->palette().color(label->foregroundRole());
            EXPECT_GE(contrast(ink, ground()), 4.5) << label->text().toStdString();
        }
        prefer(true);
        prefer(false);
        EXPECT_EQ(ground(), light);
        EXPECT_EQ(QApplication::palette(), QApplication::style()->standardPalette());
    }
}

TEST_F(DarkColoursTest, leaveTheColoursOfADesktopAlone) {
    const QPalette desktops(QColor(0xe0e0ff), QColor(0xd0d0ff));
    QApplication::setPalette(desktops);
    for (const bool dark : {true, false}) {
        colours.prefer(dark);
        EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0xd0d0ff));
    }
}

TEST_F(DarkColoursTest, leaveAToolkitAloneThatIsDarkByItself) {
    const DarkToolkit dark;
    QApplication::setPalette(QPalette());
    const auto toolkits = QApplication::palette();
    ASSERT_TRUE(isDark(toolkits));
    colours.prefer(true);
    EXPECT_EQ(QApplication::palette().resolveMask(), toolkits.resolveMask());
    colours.prefer(false);
    EXPECT_EQ(QApplication::palette(), toolkits);
}

TEST_F(DarkColoursTest, areTheToolkitsOwn) {
    const DarkToolkit dark;
    const auto toolkits = QApplication::style()->standardPalette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto which = static_cast<QPalette::ColorRole>(role);
            if (which != QPalette::NoRole) {
                EXPECT_EQ(darkPalette().color(group, which), toolkits.color(group, which))
                    << group << " " << role;
            }
        }
    }
}

} // namespace
} // namespace vantoro::testing
