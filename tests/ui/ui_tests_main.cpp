// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdlib>

#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

// Without a screen, unless one is requested; but with room for a window in large letters.
int main(int argumentCount, char** arguments) {
    ::setenv("QT_QPA_PLATFORM", "offscreen:configfile=" SCREEN, 0);
    const QApplication application(argumentCount, arguments);
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
