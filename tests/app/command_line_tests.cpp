// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/command_line.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

Command parsed(const char* line) {
    return parseCommandLine(QString::fromUtf8(line).split(' ', Qt::SkipEmptyParts));
}

std::string usageErrorOf(const Command& command) {
    const auto* error = std::get_if<UsageError>(&command);
    return error != nullptr ? error->text : "no usage error";
}

TEST(CommandLine, recordAloneTakesBothSourcesAtTheirDefaultVolumes) {
    RecordCommand expected;
    expected.systemVolume = 0.9F;
    expected.microphoneVolume = 1.0F;
    EXPECT_EQ(parsed("record"), Command(expected));
    EXPECT_TRUE(expected.systemAudio && expected.microphone);
}

TEST(CommandLine, everyOptionOfRecordIsTaken) {
    RecordCommand expected;
    expected.seconds = 2.5;
    expected.folder = "/tmp/recordings";
    expected.systemAudio = false;
    expected.microphone = false;
    expected.microphoneID = "usb-microphone";
    expected.systemVolume = 0.25F;
    expected.microphoneVolume = 1.25F;
    expected.language = AppLanguage::english;
    EXPECT_EQ(
        parsed("record --seconds 2.5 --folder /tmp/recordings --no-system-audio --language en "
               "--no-microphone --microphone usb-microphone --system-volume=0.25 "
               "--microphone-volume=1.25"),
        Command(expected));
}

TEST(CommandLine, emptyMicrophoneIdentifierIsTakenAsItStands) {
    RecordCommand expected;
    expected.microphoneID = "";
    EXPECT_EQ(parsed("record --microphone="), Command(expected));
}

TEST(CommandLine, otherCommandsAndVersionAndHelp) {
    EXPECT_EQ(parsed("devices"), Command(DevicesCommand{}));
    EXPECT_EQ(parsed("recover"), Command(RecoverCommand{}));
    EXPECT_EQ(parsed("recover --folder /r"), Command(RecoverCommand{"/r"}));
    EXPECT_EQ(parsed("doctor"), Command(DoctorCommand{}));
    EXPECT_EQ(parsed("doctor --language zh-Hans"), Command(DoctorCommand{AppLanguage::chinese}));
    EXPECT_TRUE(std::get<PrintCommand>(parsed("--version")).text.starts_with("vantoro "));
    EXPECT_TRUE(std::get<PrintCommand>(parsed("--help")).text.starts_with("Usage: vantoro "));
    EXPECT_TRUE(
        std::get<PrintCommand>(parsed("record --help")).text.starts_with("Usage: vantoro "));
}

TEST(CommandLine, whatMakesNoSenseIsOneLineThatSaysWhy) {
    const std::pair<const char*, const char*> table[] = {
        {"", "What shall be done?"},
        {"play", "\"play\" is not a command."},
        {"--loud", "\"--loud\" is not a command."},
        {"record --loud", "Unknown option 'loud'."},
        {"record now", "\"now\" is one word too many."},
        {"devices --folder x", "Unknown option 'folder'."},
        {"recover --seconds 5", "Unknown option 'seconds'."},
        {"recover --folder=", "--folder takes the name of a folder."},
        {"--version please", "\"please\" is one word too many."},
        {"record --seconds", "Missing value after '--seconds'."},
        {"record --seconds ten", "--seconds takes a number above 0, not \"ten\"."},
        {"record --seconds 0", "--seconds takes a number above 0, not \"0\"."},
        {"record --seconds=-1", "--seconds takes a number above 0, not \"-1\"."},
        {"record --seconds nan", "--seconds takes a number above 0, not \"nan\"."},
        {"record --seconds inf", "--seconds takes a number above 0, not \"inf\"."},
        {"doctor now", "\"now\" is one word too many."},
        {"doctor --folder x", "Unknown option 'folder'."},
        {"doctor --language=", "--language takes zh-Hans or en, not \"\"."},
        {"record --language fr", "--language takes zh-Hans or en, not \"fr\"."},
        {"record --system-volume loud",
         "--system-volume takes a number that is 0 or more, not \"loud\"."},
        {"record --system-volume=-0.5",
         "--system-volume takes a number that is 0 or more, not \"-0.5\"."},
        {"record --microphone-volume inf",
         "--microphone-volume takes a number that is 0 or more, not \"inf\"."},
        {"record --microphone-volume 1e300",
         "--microphone-volume takes a number that is 0 or more, not \"1e300\"."},
        {"record --microphone-volume=",
         "--microphone-volume takes a number that is 0 or more, not \"\"."},
        {"record --folder=", "--folder takes the name of a folder."},
    };
    for (const auto& [line, text] : table) {
        EXPECT_EQ(usageErrorOf(parsed(line)), std::string(text) + " See vantoro --help.") << line;
    }
}

} // namespace
} // namespace vantoro
