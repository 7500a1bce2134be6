// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/command_line.h"

#include <tuple>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

Command parsed(const char* line, AppLanguage usersLanguage = AppLanguage::english) {
    return parseCommandLine(QString::fromUtf8(line).split(' ', Qt::SkipEmptyParts), usersLanguage);
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
    expected.silence = 30;
    expected.folder = "/tmp/recordings";
    expected.systemAudio = false;
    expected.microphone = false;
    expected.microphoneID = "usb-microphone";
    expected.systemVolume = 0.25F;
    expected.microphoneVolume = 1.25F;
    expected.title = "Interview";
    expected.tracks = true;
    expected.language = AppLanguage::english;
    EXPECT_EQ(parsed("record --seconds 2.5 --until-silence 30 --folder /tmp/recordings "
                     "--no-system-audio --language en --title Interview --tracks "
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
    EXPECT_EQ(parsed("devices --json --language en"),
              Command(DevicesCommand{.json = true, .language = AppLanguage::english}));
    EXPECT_EQ(parsed("recover"), Command(RecoverCommand{}));
    EXPECT_EQ(
        parsed("recover --folder /r --language en --tracks"),
        Command(RecoverCommand{.folder = "/r", .tracks = true, .language = AppLanguage::english}));
    EXPECT_EQ(parsed("doctor"), Command(DoctorCommand{}));
    EXPECT_EQ(
        parsed("doctor --json --folder /r --language zh-Hans"),
        Command(DoctorCommand{.json = true, .folder = "/r", .language = AppLanguage::chinese}));
    EXPECT_TRUE(std::get<PrintCommand>(parsed("--version")).text.starts_with("vantoro "));
    EXPECT_TRUE(std::get<PrintCommand>(parsed("--help")).text.starts_with("Usage: vantoro "));
    EXPECT_TRUE(
        std::get<PrintCommand>(parsed("record --help")).text.starts_with("Usage: vantoro "));
}

TEST(CommandLine, remoteCommandsAndTheirOptions) {
    using enum RemoteCommand::Action;
    EXPECT_EQ(parsed("start"), Command(RemoteCommand{.action = start, .language = {}}));
    EXPECT_EQ(parsed("stop --language en"),
              Command(RemoteCommand{.action = stop, .language = AppLanguage::english}));
    EXPECT_EQ(parsed("toggle"), Command(RemoteCommand{.action = toggle, .language = {}}));
    EXPECT_EQ(parsed("mark"), Command(RemoteCommand{.action = mark, .language = {}}));
    EXPECT_EQ(parsed("mark question --language en"),
              Command(RemoteCommand{
                  .action = mark, .text = "question", .language = AppLanguage::english}));
    EXPECT_EQ(parsed("status"), Command(StatusCommand{}));
    EXPECT_EQ(parsed("status --follow --json --language=zh-Hans"),
              Command(StatusCommand{true, true, AppLanguage::chinese}));
    for (const auto* const line : {"start --json", "stop now", "toggle --seconds 2", "mark one two",
                                   "mark --text", "status --json=yes", "status --folder /r"}) {
        EXPECT_NE(usageErrorOf(parsed(line)), "no usage error") << line;
    }
}

TEST(CommandLine, lastOfRepeatedOptionsCounts) {
    EXPECT_EQ(parsed("recover --folder /a --folder=/b"),
              Command(RecoverCommand{.folder = "/b", .tracks = false, .language = {}}));
}

TEST(CommandLine, helpIsInTheLanguageThatIsAskedForElseInTheUsers) {
    using enum AppLanguage;
    const std::string inChinese = "用法：vantoro ";
    const std::string inEnglish = "Usage: vantoro ";
    for (const auto& [line, usersLanguage, opening] :
         {std::tuple("--help", chinese, inChinese), std::tuple("--help", english, inEnglish),
          std::tuple("-h --language en", chinese, inEnglish),
          std::tuple("--language=zh-Hans --help", english, inChinese)}) {
        const auto text = std::get<PrintCommand>(parsed(line, usersLanguage)).text;
        EXPECT_TRUE(text.starts_with(opening)) << line << text;
        EXPECT_NE(text.find("  --folder FOLDER "), std::string::npos) << text;
    }
}

TEST(CommandLine, usageErrorIsInTheLanguageThatIsAskedForElseInTheUsers) {
    using enum AppLanguage;
    EXPECT_EQ(usageErrorOf(parsed("record now", chinese)),
              "多余的参数“now”。请参阅 vantoro --help。");
    EXPECT_EQ(usageErrorOf(parsed("record --seconds=0 --language=zh-Hans", english)),
              "--seconds 的值必须是大于 0 的数，不能是“0”。请参阅 vantoro --help。");
    EXPECT_EQ(usageErrorOf(parsed("record --language en now", chinese)),
              "Unexpected argument \"now\". See vantoro --help.");
}

TEST(CommandLine, invalidCommandLineIsOneLineThatSaysWhy) {
    const std::pair<const char*, const char*> table[] = {
        {"", "Unknown command \"\"."},
        {"play", "Unknown command \"play\"."},
        {"--loud", "Unknown command \"--loud\"."},
        {"record --loud", "Unknown option \"--loud\"."},
        {"record now", "Unexpected argument \"now\"."},
        {"devices --folder x", "Unknown option \"--folder\"."},
        {"recover --seconds 5", "Unknown option \"--seconds\"."},
        {"recover --folder=", "--folder needs the name of a folder."},
        {"--version please", "Unexpected argument \"please\"."},
        {"record --seconds", "--seconds needs a value."},
        {"record --no-microphone=yes", "--no-microphone takes no value."},
        {"record -s 5", "Unknown option \"-s\"."},
        {"record --seconds ten", "--seconds needs a number greater than 0, not \"ten\"."},
        {"record --seconds 0", "--seconds needs a number greater than 0, not \"0\"."},
        {"record --seconds=-1", "--seconds needs a number greater than 0, not \"-1\"."},
        {"record --seconds nan", "--seconds needs a number greater than 0, not \"nan\"."},
        {"record --seconds inf", "--seconds needs a number greater than 0, not \"inf\"."},
        {"doctor now", "Unexpected argument \"now\"."},
        {"doctor --folder=", "--folder needs the name of a folder."},
        {"doctor --json=yes", "--json takes no value."},
        {"record --until-silence 0", "--until-silence needs a number greater than 0, not \"0\"."},
        {"doctor --language=", "--language needs zh-Hans or en, not \"\"."},
        {"record --language fr", "--language needs zh-Hans or en, not \"fr\"."},
        {"record --system-volume loud",
         "--system-volume needs a number that is 0 or greater, not \"loud\"."},
        {"record --system-volume=-0.5",
         "--system-volume needs a number that is 0 or greater, not \"-0.5\"."},
        {"record --microphone-volume inf",
         "--microphone-volume needs a number that is 0 or greater, not \"inf\"."},
        {"record --microphone-volume 1e300",
         "--microphone-volume needs a number that is 0 or greater, not \"1e300\"."},
        {"record --microphone-volume=",
         "--microphone-volume needs a number that is 0 or greater, not \"\"."},
        {"record --folder=", "--folder needs the name of a folder."},
    };
    for (const auto& [line, text] : table) {
        EXPECT_EQ(usageErrorOf(parsed(line)), std::string(text) + " See vantoro --help.") << line;
    }
}

} // namespace
} // namespace vantoro::testing
