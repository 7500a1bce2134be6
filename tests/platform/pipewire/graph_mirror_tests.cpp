// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/graph_mirror.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace pipewire;

TEST(DefaultDeviceName, isReadFromTheMetadata) {
    EXPECT_EQ(defaultDeviceName(R"({"name":"alsa_input.usb"})"), "alsa_input.usb");
    EXPECT_EQ(defaultDeviceName(R"({ "other": "x", "name": "a b" })"), "a b");
    EXPECT_EQ(defaultDeviceName("{}"), "");
    EXPECT_EQ(defaultDeviceName("nonsense"), "");
    EXPECT_EQ(defaultDeviceName(nullptr), "");
}

} // namespace
} // namespace vantoro::testing
