// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtCore/QCoreApplication>

#include <gtest/gtest.h>

#include "tests/platform/desktop/opening/private_applications.h"

int main(int argumentCount, char** arguments) {
    const vantoro::testing::PrivateApplications applications;
    const QCoreApplication application(argumentCount, arguments);
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
