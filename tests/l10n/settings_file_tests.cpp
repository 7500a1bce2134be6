// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/settings_file.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "l10n/l10n.h"
#include "l10n/language_settings.h"

namespace vantoro::testing {
namespace {

using enum Preference;

class SettingsFileTest : public ::testing::Test {
protected:
    QTemporaryDir temporary;
    std::filesystem::path folder = temporary.path().toStdString();
    std::filesystem::path file = folder / "below" / "vantoro.conf";

    static void write(const std::filesystem::path& path, const std::string& content) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream stream(path, std::ios::binary);
        stream << content;
        ASSERT_TRUE(stream.flush().good());
    }

    static std::string read(const std::filesystem::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    static void store(SettingsFile& settings, Preference preference, const std::string& value) {
        settings.set(preference, value);
        settings.waitUntilStored();
    }

    /// What a later run finds: under a name that nothing in this process has read before.
    std::optional<std::string> inTheNextRun(Preference preference) {
        const auto copy = folder / ("copy-" + std::to_string(++copies_) + ".conf");
        std::filesystem::copy_file(file, copy);
        return SettingsFile(copy).get(preference);
    }

private:
    int copies_ = 0;
};

TEST_F(SettingsFileTest, missingFileHoldsNothingAndReadingDoesNotCreateIt) {
    const SettingsFile settings(file);
    EXPECT_EQ(settings.get(appLanguage), std::nullopt);
    EXPECT_EQ(settings.get(outputDirectory), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(SettingsFileTest, whatIsSetIsInTheFileUnderItsKeyAndNothingElseIs) {
    SettingsFile settings(file);
    store(settings, appLanguage, "en");
    EXPECT_EQ(read(file), "[General]\nappLanguage=en\n");
    store(settings, outputDirectory, "/home/user/Videos");
    EXPECT_EQ(read(file), "[General]\nappLanguage=en\noutputDirectory=/home/user/Videos\n");
    store(settings, appLanguage, "zh-Hans");
    EXPECT_EQ(read(file), "[General]\nappLanguage=zh-Hans\noutputDirectory=/home/user/Videos\n");
    EXPECT_EQ(settings.get(appLanguage), "zh-Hans");
    EXPECT_EQ(settings.get(outputDirectory), "/home/user/Videos");
    store(settings, windowSize, "640x720");
    EXPECT_EQ(read(file), "[General]\nappLanguage=zh-Hans\noutputDirectory=/home/user/Videos\n"
                          "windowSize=640x720\n");
    EXPECT_EQ(inTheNextRun(windowSize), "640x720");
}

TEST_F(SettingsFileTest, wishForTracksIsReadAsWrittenByHand) {
    write(file, "[General]\nappLanguage=en\nkeepTracks=true\n");
    SettingsFile settings(file);
    EXPECT_EQ(settings.get(Preference::keepTracks), "true");
    store(settings, appLanguage, "zh-Hans");
    EXPECT_EQ(read(file), "[General]\nappLanguage=zh-Hans\nkeepTracks=true\n");
}

TEST_F(SettingsFileTest, anyTextComesBackAsItWas) {
    using namespace std::string_literals;
    for (const auto& text : {
             ""s,
             "/home/user/My Videos"s,
             "/a, b; c = d"s,
             " /leading and trailing "s,
             "@Invalid()"s,
             "@ByteArray(x)"s,
             "@"s,
             "/100%/%20"s,
             R"(/quote"s\and\nothing)"s,
             "/line\nbreak\tand tab"s,
             "/录音/Übung"s,
             "/\xff\xfe/not text"s,
             "/nul\0inside"s,
             "/replacement/\xef\xbf\xbd"s,
             "true"s,
             "007"s,
             "#comment"s,
             "[section]"s,
         }) {
        SettingsFile settings(file);
        store(settings, outputDirectory, text);
        EXPECT_EQ(settings.get(outputDirectory), text);
        EXPECT_EQ(inTheNextRun(outputDirectory), text);
    }
}

TEST_F(SettingsFileTest, textWrittenByHandIsRead) {
    write(file, "[General]\r\noutputDirectory = \"/home/user/A, B\"\r\nappLanguage = en\r\n");
    const SettingsFile settings(file);
    EXPECT_EQ(settings.get(appLanguage), "en");
    EXPECT_EQ(settings.get(outputDirectory), "/home/user/A, B");
}

TEST_F(SettingsFileTest, whatElseTheFileHoldsStaysInIt) {
    write(file, "[General]\nfuture=1\n\n[Section]\nappLanguage=en\n");
    SettingsFile settings(file);
    EXPECT_EQ(settings.get(appLanguage), std::nullopt);
    store(settings, outputDirectory, "/a");
    EXPECT_EQ(read(file), "[General]\nfuture=1\noutputDirectory=/a\n\n[Section]\nappLanguage=en\n");
}

TEST_F(SettingsFileTest, whatAnotherProcessStoredMeanwhileIsKept) {
    SettingsFile settings(file);
    store(settings, appLanguage, "en");
    write(file, "[General]\nappLanguage=en\noutputDirectory=/by/another\n");
    store(settings, appLanguage, "zh-Hans");
    EXPECT_EQ(read(file), "[General]\nappLanguage=zh-Hans\noutputDirectory=/by/another\n");
}

const std::string damagedFiles[] = {
    "appLanguage",
    "[General",
    "[General]\nappLanguage",
    "[General]\nappLanguage=de, en\n",
    "[General]\nappLanguage=@Invalid()\n",
    "[General]\nappLanguage=@Variant(\\0\\0\\0\\x80)\n",
    "[General]\nappLanguage=@Rect(1 2 3 4)\n",
    "[General]\nappLanguage=\"en\n",
    "[]]]\n===\n\\x\n%%%\n",
    "\xff\xfe\x01\x02\x03\xff",
    std::string(100000, '\0'),
    std::string(100000, '['),
};

TEST_F(SettingsFileTest, damagedFileMeansChinese) {
    int number = 0;
    for (const auto& content : damagedFiles) {
        const auto damaged = folder / std::to_string(++number);
        write(damaged, content);
        SettingsFile settings(damaged);
        EXPECT_EQ(L10n(settings).text(L10n::Key::ok), "好") << number;
        EXPECT_EQ(LanguageSettings(settings).language(), AppLanguage::chinese) << number;
        EXPECT_EQ(settings.get(outputDirectory), std::nullopt) << number;
        EXPECT_EQ(read(damaged), content) << number;
    }
}

TEST_F(SettingsFileTest, damagedFileIsMendedByStoring) {
    for (const auto& content : damagedFiles) {
        std::filesystem::remove_all(file.parent_path());
        write(file, content);
        SettingsFile settings(file);
        store(settings, appLanguage, "en");
        store(settings, outputDirectory, "/recordings");
        EXPECT_EQ(settings.get(appLanguage), "en");
        EXPECT_EQ(inTheNextRun(appLanguage), "en") << content.substr(0, 50);
        EXPECT_EQ(inTheNextRun(outputDirectory), "/recordings") << content.substr(0, 50);
    }
}

TEST_F(SettingsFileTest, choiceThatCannotBeStoredHoldsForThisRun) {
    write(folder / "a file", "");
    std::filesystem::create_directories(folder / "a folder" / "inside");
    for (const auto& unwritable : {folder / "a file" / "vantoro.conf", folder / "a folder",
                                   std::filesystem::path("/proc/vantoro/vantoro.conf")}) {
        SettingsFile preferences(unwritable);
        LanguageSettings settings(preferences);
        settings.setLanguage(AppLanguage::english);
        EXPECT_EQ(settings.language(), AppLanguage::english) << unwritable;
        EXPECT_EQ(L10n(preferences).text(L10n::Key::ok), "OK") << unwritable;
        EXPECT_EQ(preferences.get(outputDirectory), std::nullopt) << unwritable;
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "a file"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a folder" / "inside"));
}

TEST_F(SettingsFileTest, choiceThatCouldNotBeStoredIsStoredWithTheNextOne) {
    write(folder / "below", "in the way");
    SettingsFile settings(file);
    store(settings, appLanguage, "en");
    std::filesystem::remove(folder / "below");
    store(settings, outputDirectory, "/recordings");
    EXPECT_EQ(read(file), "[General]\nappLanguage=en\noutputDirectory=/recordings\n");
}

TEST_F(SettingsFileTest, textsAreFetchedOnOtherThreadsWhileTheLanguageChanges) {
    SettingsFile preferences(file);
    LanguageSettings settings(preferences);
    std::atomic<int> strange = 0;
    std::vector<std::jthread> threads(3);
    for (auto& thread : threads) {
        thread = std::jthread([&] {
            const L10n texts(preferences);
            for (int i = 0; i < 2000; ++i) {
                const auto text = texts.text(L10n::Key::ok);
                strange += text != "OK" && text != "好";
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        settings.setLanguage(allLanguages.at(static_cast<std::size_t>(i % 2)));
    }
    threads.clear();
    EXPECT_EQ(strange, 0);
    EXPECT_EQ(L10n(preferences).language(), AppLanguage::english);
}

TEST_F(SettingsFileTest, whatWasSetBeforeTheEndIsInTheFileAfterIt) {
    {
        SettingsFile settings(file);
        for (int i = 0; i < 50; ++i) {
            settings.set(outputDirectory, "/" + std::to_string(i));
            EXPECT_EQ(settings.get(outputDirectory), "/" + std::to_string(i));
        }
    }
    EXPECT_EQ(inTheNextRun(outputDirectory), "/49");
}

/// The variables that say where the user's files are, put back afterwards.
class UsersFileTest : public ::testing::Test {
protected:
    void TearDown() override {
        restore("HOME", homeBefore_);
        restore("XDG_CONFIG_HOME", configurationBefore_);
    }

private:
    QByteArray homeBefore_ = qgetenv("HOME");
    QByteArray configurationBefore_ = qgetenv("XDG_CONFIG_HOME");

    static void restore(const char* variable, const QByteArray& before) {
        before.isNull() ? static_cast<void>(qunsetenv(variable))
                        : static_cast<void>(qputenv(variable, before));
    }
};

TEST_F(UsersFileTest, isWhereTheDesktopKeepsConfiguration) {
    qputenv("HOME", "/home/user");
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(SettingsFile::usersFile(), "/home/user/.config/vantoro/vantoro.conf");
    qputenv("XDG_CONFIG_HOME", "/configuration");
    EXPECT_EQ(SettingsFile::usersFile(), "/configuration/vantoro/vantoro.conf");
}

} // namespace
} // namespace vantoro::testing
