// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/l10n.h"

#include <cerrno>
#include <string>
#include <utility>

#include <QtCore/QByteArray>
#include <QtCore/QLocale>

#include <gtest/gtest.h>

#include "engine/failure.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using Key = L10n::Key;

TEST(L10nTest, isChineseAsLongAsNothingWasStored) {
    const MemoryPreferences nothing;
    EXPECT_EQ(L10n(nothing).language(), AppLanguage::chinese);
    EXPECT_EQ(L10n(nothing).text(Key::ok), "好");
}

TEST(L10nTest, isEnglishOnlyWhenExactlyThatIsStored) {
    struct Case {
        const char* stored;
        const char* ok;
    };

    for (const auto& [stored, ok] : {
             Case{"en", "OK"},
             Case{"zh-Hans", "好"},
             Case{"", "好"},
             Case{"EN", "好"},
             Case{"En", "好"},
             Case{"en-US", "好"},
             Case{"en_GB", "好"},
             Case{"en_US.UTF-8", "好"},
             Case{" en", "好"},
             Case{"en\n", "好"},
             Case{"English", "好"},
             Case{"de", "好"},
             Case{"zh-Hant", "好"},
             Case{"true", "好"},
         }) {
        const auto preferences = preferencesIn(stored);
        EXPECT_EQ(L10n(preferences).text(Key::ok), ok) << stored;
    }
}

TEST(L10nTest, followsThePreferenceAtEachCall) {
    MemoryPreferences preferences;
    const L10n texts(preferences);
    EXPECT_EQ(texts.text(Key::close), "关闭");
    preferences.values[Preference::appLanguage] = "en";
    EXPECT_EQ(texts.text(Key::close), "Close");
    EXPECT_EQ(texts.recovered(1), "A previously interrupted recording was recovered and saved.");
    preferences.values.clear();
    EXPECT_EQ(texts.text(Key::close), "关闭");
    EXPECT_EQ(texts.recovered(1), "已恢复并保存一段此前中断的录音。");
}

TEST(L10nTest, saysWhatIsWrongWithASource) {
    const auto english = preferencesIn("en");
    const auto chinese = preferencesIn("zh-Hans");

    struct Case {
        SourceCondition condition;
        const char* english;
        const char* chinese;
        const char* englishInShort;
        const char* chineseInShort;
    };

    for (const auto& row : {
             Case{SourceCondition::delivering, "", "", "", ""},
             Case{SourceCondition::silent, "Nothing but silence for at least 10 seconds",
                  "至少 10 秒没有任何声音", "only silence", "没有声音"},
             Case{SourceCondition::muted, "Muted in the desktop's sound settings",
                  "已在系统声音设置中静音", "muted", "已静音"},
             Case{SourceCondition::coded,
                  "An application sends coded sound straight to the receiver, which cannot be "
                  "recorded. Switch passthrough off in that application",
                  "有应用将编码音频直通到功放，无法录制。请在该应用中关闭直通",
                  "coded, not recorded", "编码音频未录制"},
         }) {
        EXPECT_EQ(L10n(english).condition(row.condition), row.english);
        EXPECT_EQ(L10n(chinese).condition(row.condition), row.chinese);
        EXPECT_EQ(L10n(english).conditionInShort(row.condition), row.englishInShort);
        EXPECT_EQ(L10n(chinese).conditionInShort(row.condition), row.chineseInShort);
    }
}

TEST(L10nTest, storesNothing) {
    const MemoryPreferences preferences;
    EXPECT_NE(L10n(preferences).text(Key::ok), "");
    EXPECT_TRUE(preferences.stored.empty());
}

TEST(L10nTest, recordingsFolderIsNoLanguage) {
    MemoryPreferences preferences;
    preferences.values[Preference::outputDirectory] = "en";
    EXPECT_EQ(L10n(preferences).language(), AppLanguage::chinese);
}

/// A system that speaks a language for a while.
class SystemLanguage {
public:
    explicit SystemLanguage(const char* name) {
        for (auto& [variable, before] : variables_) {
            before = qgetenv(variable);
            qputenv(variable, name);
        }
        QLocale::setDefault(QLocale(QString::fromLatin1(name)));
    }

    SystemLanguage(const SystemLanguage&) = delete;
    SystemLanguage& operator=(const SystemLanguage&) = delete;

    ~SystemLanguage() {
        for (const auto& [variable, before] : variables_) {
            before.isNull() ? static_cast<void>(qunsetenv(variable))
                            : static_cast<void>(qputenv(variable, before));
        }
        QLocale::setDefault(defaultBefore_);
    }

private:
    std::pair<const char*, QByteArray> variables_[4]{
        {"LANGUAGE", {}}, {"LC_ALL", {}}, {"LC_MESSAGES", {}}, {"LANG", {}}};
    QLocale defaultBefore_; // of this moment
};

TEST(L10nTest, systemsLanguagePlaysNoPart) {
    for (const auto* name : {"en_US.UTF-8", "en", "zh_CN.UTF-8", "de_DE.UTF-8", "C", ""}) {
        const SystemLanguage system(name);
        const MemoryPreferences nothing;
        EXPECT_EQ(L10n(nothing).text(Key::ok), "好") << name;
        const auto english = preferencesIn("en");
        EXPECT_EQ(L10n(english).text(Key::ok), "OK") << name;
        EXPECT_EQ(L10n(english).recovered(1234567),
                  "1234567 previously interrupted recordings were recovered and saved.")
            << name;
    }
}

class ComposedTextTest : public ::testing::Test {
protected:
    const MemoryPreferences inEnglish = preferencesIn("en");
    const MemoryPreferences inChinese = preferencesIn("zh-Hans");
    const L10n english{inEnglish};
    const L10n chinese{inChinese};
};

TEST_F(ComposedTextTest, keysOfComposedTextsAreEmpty) {
    for (const auto key :
         {Key::recoveredOne, Key::recoveredMany, Key::checkpointKept, Key::recordingFailed}) {
        EXPECT_EQ(english.text(key), "");
        EXPECT_EQ(chinese.text(key), "");
    }
}

TEST_F(ComposedTextTest, oneRecoveredRecordingIsNotCounted) {
    EXPECT_EQ(english.recovered(1), "A previously interrupted recording was recovered and saved.");
    EXPECT_EQ(chinese.recovered(1), "已恢复并保存一段此前中断的录音。");
}

TEST_F(ComposedTextTest, anyOtherNumberOfRecoveredRecordingsIsCountedWithoutGrouping) {
    for (const auto* number : {"0", "2", "10", "11", "21", "1000", "1234567"}) {
        const auto count = std::stoul(number);
        EXPECT_EQ(english.recovered(count),
                  std::string(number) +
                      " previously interrupted recordings were recovered and saved.");
        EXPECT_EQ(chinese.recovered(count),
                  "已恢复并保存 " + std::string(number) + " 段此前中断的录音。");
    }
}

TEST_F(ComposedTextTest, lostSoundIsToldInWholeSecondsThatAreNeverNone) {
    EXPECT_EQ(english.soundNotTakenInTime(SoundLoss::Duration(0.2)),
              "The computer did not keep up: 1 second of the recording is silent.");
    EXPECT_EQ(english.soundNotTakenInTime(SoundLoss::Duration(12)),
              "The computer did not keep up: 12 seconds of the recording are silent.");
    EXPECT_EQ(chinese.soundNotTakenInTime(SoundLoss::Duration(1.5)),
              "电脑一度没有响应，录音中有约 2 秒没有声音。");
    const auto reason = std::make_exception_ptr(FileFailure(FileAction::write, "a", EIO));
    EXPECT_EQ(english.soundNotWritten(SoundLoss::Duration(7.5), reason),
              "About 8 seconds of sound could not be written to the disk: Cannot write a: "
              "Input/output error.");
    EXPECT_EQ(english.soundNotWritten(SoundLoss::Duration(0.5), nullptr),
              "About 1 second of sound could not be written to the disk, which was too slow.");
    EXPECT_EQ(chinese.soundNotWritten(SoundLoss::Duration(7.5), reason),
              "约 8 秒的声音未能写入磁盘：无法写入 a：输入/输出错误。");
    EXPECT_EQ(chinese.soundNotWritten(SoundLoss::Duration(1), nullptr),
              "约 1 秒的声音未能写入磁盘：磁盘太慢。");
}

TEST_F(ComposedTextTest, recordingThatCouldNotBeSavedIsToldWithItsPlace) {
    const auto reason = std::make_exception_ptr(Failure(FailureCode::recordingDamaged));
    EXPECT_EQ(english.notRecovered("/r/a.partial.mov", reason),
              "An interrupted recording could not be saved: The recording file is damaged. It "
              "stays as it is: /r/a.partial.mov");
    EXPECT_EQ(chinese.notRecovered("/r/a.partial.mov", reason),
              "有一段中断的录音未能保存：录音文件已损坏。它仍保留在：/r/a.partial.mov");
}

TEST_F(ComposedTextTest, roomThatIsLeftIsCountedInMinutes) {
    struct Row {
        std::int64_t minutes;
        const char* english;
        const char* chinese;
    };

    for (const auto& row : {
             Row{0, "The disk is nearly full: there is room for less than a minute of recording.",
                 "磁盘空间即将用尽：剩余空间只够录音不到 1 分钟。"},
             Row{1, "The disk is nearly full: there is room for about 1 minute of recording.",
                 "磁盘空间即将用尽：剩余空间大约还能录音 1 分钟。"},
             Row{9, "The disk is nearly full: there is room for about 9 minutes of recording.",
                 "磁盘空间即将用尽：剩余空间大约还能录音 9 分钟。"},
         }) {
        EXPECT_EQ(english.roomLeft(row.minutes), row.english);
        EXPECT_EQ(chinese.roomLeft(row.minutes), row.chinese);
    }
}

TEST_F(ComposedTextTest, keptOriginalsAreNamedOrCounted) {
    for (const auto& texts : {english, chinese}) {
        EXPECT_EQ(texts.originalsKept({}), "");
    }
    EXPECT_EQ(english.originalsKept({"/r/a.incomplete.mov"}),
              "Part of it could not be read. The damaged original was kept in the recording folder "
              "as a.incomplete.mov.");
    EXPECT_EQ(chinese.originalsKept({"/r/a.incomplete.mov"}),
              "其中有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中：a.incomplete.mov。");
    const std::vector<std::filesystem::path> two{"/r/a.incomplete.mov", "/r/b.incomplete.mov"};
    EXPECT_EQ(english.originalsKept(two),
              "Parts of 2 of them could not be read. The damaged originals were kept in the "
              "recording folder. Their names end in “.incomplete.mov”.");
    EXPECT_EQ(chinese.originalsKept(two),
              "其中 2 段录音有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中，"
              "文件名以“.incomplete.mov”结尾。");
}

TEST_F(ComposedTextTest, sentencesAreApartUnlessAFullWidthStopIsBetween) {
    EXPECT_EQ(L10n::sentences({"One.", "", "Two."}), "One. Two.");
    EXPECT_EQ(L10n::sentences({"", "一。", "二。", ""}), "一。二。");
    EXPECT_EQ(L10n::sentences({"一", "二。"}), "一 二。");
    EXPECT_EQ(L10n::sentences({"", ""}), "");
}

TEST_F(ComposedTextTest, keptOriginalIsToldWithItsPath) {
    EXPECT_EQ(english.originalKept("/r/a.incomplete.mov"),
              "Part of a recording could not be read. The damaged original was kept: "
              "/r/a.incomplete.mov");
    EXPECT_EQ(chinese.originalKept("/r/a.incomplete.mov"),
              "有一段录音的一部分内容无法读取，损坏的原始文件已保留：/r/a.incomplete.mov");
}

TEST_F(ComposedTextTest, tracksThatWereNotKeptAreToldWithTheReasonAndThePathOfAll) {
    const TracksNotKept failure{
        .original = "/r/a.incomplete.mov",
        .reason = std::make_exception_ptr(FileFailure(FileAction::write, "/r/a.m4a", ENOSPC))};
    EXPECT_EQ(english.tracksNotKept(failure),
              "The sources could not be saved separately: Cannot write a.m4a: No space left on "
              "device. A file with all of them was kept: /r/a.incomplete.mov");
    EXPECT_EQ(chinese.tracksNotKept(failure),
              "各声音来源未能单独保存：无法写入 a.m4a：磁盘空间不足。"
              "包含全部来源的文件已保留：/r/a.incomplete.mov");
}

TEST_F(ComposedTextTest, newVersionIsInsertedUnchanged) {
    EXPECT_EQ(english.newVersionAvailable("1.2.0"), "Version 1.2.0 is available.");
    EXPECT_EQ(chinese.newVersionAvailable("1.2.0"), "发现新版本 1.2.0。");
    EXPECT_EQ(english.newVersionAvailable(""), "Version  is available.");
    EXPECT_EQ(chinese.newVersionAvailable(" 2%1\n"), "发现新版本  2%1\n。");
}

TEST_F(ComposedTextTest, runningVersionFollowsItsPrefix) {
    EXPECT_EQ(english.runningVersion("0.1.0"), "Version 0.1.0");
    EXPECT_EQ(chinese.runningVersion("0.1.0"), "当前版本 0.1.0");
}

TEST_F(ComposedTextTest, keptCheckpointCanBeAppendedToASentence) {
    EXPECT_EQ(english.checkpointKept(),
              " A recoverable recording checkpoint was kept in the recording folder.");
    EXPECT_EQ(chinese.checkpointKept(), " 已保留可恢复的录音检查点。");
}

} // namespace
} // namespace vantoro::testing
