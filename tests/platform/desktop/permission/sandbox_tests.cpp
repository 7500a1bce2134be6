// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/sandbox.h"

#include <fstream>
#include <string>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

class SandboxTest : public ::testing::Test {
protected:
    QTemporaryDir folder;
    std::filesystem::path description = folder.filePath("sandbox-info").toStdString();

    std::optional<std::string> idIn(const std::string& content) {
        std::ofstream(description) << content;
        return desktop::sandboxedApplicationID(description);
    }
};

TEST_F(SandboxTest, thereIsNoneWithoutADescription) {
    EXPECT_EQ(desktop::sandboxedApplicationID(description), std::nullopt);
}

TEST_F(SandboxTest, tellsTheApplicationsName) {
    EXPECT_EQ(idIn("[Application]\nname=org.example.Recorder\nruntime=runtime/x\n\n"
                   "[Instance]\nname=wrong\n"),
              "org.example.Recorder");
}

TEST_F(SandboxTest, isASandboxEvenWhenItsDescriptionSaysNothing) {
    EXPECT_EQ(idIn(""), "");
    EXPECT_EQ(idIn("[Runtime]\nname=org.example.Platform\n"), "");
    EXPECT_EQ(idIn("\x01 no key file"), "");
}

} // namespace
} // namespace vantoro::testing
