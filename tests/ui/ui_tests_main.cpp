// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdlib>

#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

// Without a screen, unless one is requested.
int main(int argumentCount, char** arguments) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QApplication application(argumentCount, arguments);
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
