// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdlib>

#include <QtCore/QCoreApplication>

#include <gtest/gtest.h>

// The settings are read from memory and from our own schemas, which takes effect only before the
// first of them is asked for.
int main(int argumentCount, char** arguments) {
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    ::setenv("GSETTINGS_SCHEMA_DIR", TEST_SCHEMAS, 1);
    const QCoreApplication application(argumentCount, arguments);
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
