// SPDX-License-Identifier: GPL-3.0-or-later

#include <cstdlib>

#include <QtCore/QCoreApplication>

#include <gtest/gtest.h>

// Uses settings in memory and the tests' own schemas, which must be set before any setting is read.
int main(int argumentCount, char** arguments) {
    ::setenv("GSETTINGS_BACKEND", "memory", 1);
    ::setenv("GSETTINGS_SCHEMA_DIR", TEST_SCHEMAS, 1);
    const QCoreApplication application(argumentCount, arguments);
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
