// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/devices_command.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

const std::vector<AudioInputDevice> two{{"alsa_input.usb", "Headset"},
                                        {"alsa_input.pci", "Laptop"}};

TEST(DevicesCommand, marksTheDefaultMicrophone) {
    EXPECT_EQ(devicesText(two, "alsa_input.pci"),
              "  alsa_input.usb\tHeadset\n* alsa_input.pci\tLaptop\n");
}

TEST(DevicesCommand, marksNoneWhenTheDefaultIsNoneOfThem) {
    EXPECT_EQ(devicesText(two, "elsewhere"),
              "  alsa_input.usb\tHeadset\n  alsa_input.pci\tLaptop\n");
    EXPECT_EQ(devicesText(two, std::nullopt), devicesText(two, "elsewhere"));
}

TEST(DevicesCommand, printsNothingWithoutMicrophones) {
    EXPECT_EQ(devicesText({}, std::nullopt), "");
}

TEST(DevicesCommand, jsonSaysWhichIsTheDefault) {
    EXPECT_EQ(devicesJson({{"usb", "\"Front\" 麦克风"}, {"pci", "Laptop"}}, "pci"),
              "[{\"default\":false,\"id\":\"usb\",\"name\":\"\\\"Front\\\" 麦克风\"},"
              "{\"default\":true,\"id\":\"pci\",\"name\":\"Laptop\"}]\n");
    EXPECT_EQ(devicesJson({}, std::nullopt), "[]\n");
}

} // namespace
} // namespace vantoro::testing
