// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/error_description.h"

#include <cerrno>
#include <stdexcept>

#include <gtest/gtest.h>

#include "l10n/l10n.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using enum RecordingError::Case;
using enum AppLanguage;

struct Description {
    RecordingError::Case which;
    const char* english;
    const char* chinese;
};

TEST(ErrorDescriptionTest, everyCaseHasItsTextInEitherLanguage) {
    for (const auto& [which, inEnglish, inChinese] : {
             Description{noAudioSource, "Turn on System Audio or Microphone before recording.",
                         "请先开启系统声音或麦克风。"},
             Description{screenPermissionDenied,
                         "Screen & System Audio Recording permission is required. Enable Vantoro "
                         "in System Settings, then reopen the app.",
                         "需要屏幕与系统声音录制权限。请在系统设置中允许 "
                         "Vantoro，然后重新打开应用。"},
             Description{microphonePermissionDenied,
                         "Microphone permission is required. Enable Vantoro in System Settings and "
                         "try again.",
                         "需要麦克风权限。请在系统设置中允许 Vantoro 后重试。"},
             Description{noDisplayAvailable,
                         "Vantoro could not find an available display to capture.",
                         "Vantoro 找不到可用的显示器。"},
             Description{writerSetupFailed, "Vantoro could not prepare the audio file.",
                         "Vantoro 无法准备录音文件。"},
             Description{noAudioCaptured,
                         "No audio was captured. Check the selected sources and try again.",
                         "没有采集到音频，请检查已选择的音频来源。"},
             Description{exportFailed, "Vantoro could not create the final M4A file.",
                         "Vantoro 无法创建最终 M4A 文件。"},
             Description{diskTooFull,
                         "There is not enough room on the disk for a recording. Free some space, "
                         "or choose another folder.",
                         "磁盘空间不足，无法录音。请释放一些空间，或更改录音文件夹。"},
         }) {
        EXPECT_EQ(errorDescription(RecordingError(which), english), inEnglish);
        EXPECT_EQ(errorDescription(RecordingError(which), chinese), inChinese);
    }
}

TEST(ErrorDescriptionTest, writerFailureIsAPrefixAndItsMessage) {
    const auto error = RecordingError::writerFailed("No space left on device");
    EXPECT_EQ(errorDescription(error, english), "Recording failed: No space left on device");
    EXPECT_EQ(errorDescription(error, chinese), "录音失败：No space left on device");
}

TEST(ErrorDescriptionTest, writerFailureWithoutAMessageIsTheBarePrefix) {
    const auto error = RecordingError::writerFailed("");
    EXPECT_EQ(errorDescription(error, english), "Recording failed: ");
    EXPECT_EQ(errorDescription(error, chinese), "录音失败：");
}

TEST(ErrorDescriptionTest, sameErrorFollowsTheLanguageAtOnce) {
    MemoryPreferences preferences;
    const L10n texts(preferences);
    const RecordingError keyed(exportFailed);
    const auto writer = RecordingError::writerFailed("full");
    EXPECT_EQ(errorDescription(keyed, texts.language()), "Vantoro 无法创建最终 M4A 文件。");
    EXPECT_EQ(errorDescription(writer, texts.language()), "录音失败：full");
    preferences.set(Preference::appLanguage, "en");
    EXPECT_EQ(errorDescription(keyed, texts.language()),
              "Vantoro could not create the final M4A file.");
    EXPECT_EQ(errorDescription(writer, texts.language()), "Recording failed: full");
}

TEST(ErrorDescriptionTest, errorWithoutWordsOfItsOwnIsAnnouncedAsUnexpectedInChinese) {
    const auto error = std::make_exception_ptr(std::runtime_error("odd"));
    EXPECT_EQ(errorDescription(error, english), "odd");
    EXPECT_EQ(errorDescription(error, chinese), "意外错误：odd");
}

TEST(ErrorDescriptionTest, errorOfTheSystemWithoutAFileIsItsReason) {
    const auto error =
        std::make_exception_ptr(std::system_error(EMFILE, std::generic_category(), "signalfd"));
    EXPECT_EQ(errorDescription(error, english), "signalfd: Too many open files");
    EXPECT_EQ(errorDescription(error, chinese), "程序打开的文件过多。");
}

TEST(ErrorDescriptionTest, writerFailureIsWordedByItsCause) {
    const auto full = RecordingError::writerFailed(
        std::make_exception_ptr(FileFailure(FileAction::write, "/takes/a.mov", ENOSPC)));
    EXPECT_EQ(errorDescription(full, english),
              "Recording failed: Cannot write a.mov: No space left on device");
    EXPECT_EQ(errorDescription(full, chinese), "录音失败：无法写入 a.mov：磁盘空间不足。");
    const auto unknown = RecordingError::writerFailed(
        std::make_exception_ptr(Failure(FailureCode::recordingNotFinished)));
    EXPECT_EQ(errorDescription(unknown, english),
              "Recording failed: Unable to finish the recording.");
    EXPECT_EQ(errorDescription(unknown, chinese), "录音失败：无法完成录音文件。");
}

TEST(ErrorDescriptionTest, damageIsToldWithoutTheDevelopersDetail) {
    const auto error =
        std::make_exception_ptr(Failure(FailureCode::recordingDamaged, "a box ends too early"));
    EXPECT_EQ(errorDescription(error, english), "The recording file is damaged.");
    EXPECT_EQ(errorDescription(error, chinese), "录音文件已损坏。");
}

TEST(ErrorDescriptionTest, reasonHasNoFullStop) {
    const auto sentence = std::make_exception_ptr(Failure(FailureCode::serverSilent));
    EXPECT_EQ(errorReason(sentence, english), "The sound server does not respond");
    EXPECT_EQ(errorReason(sentence, chinese), "声音服务器没有响应");
    const auto phrase = std::make_exception_ptr(FileFailure(FileAction::read, "a", EIO));
    EXPECT_EQ(errorReason(phrase, english), "Cannot read a: Input/output error");
    EXPECT_EQ(errorReason(phrase, chinese), "无法读取 a：输入/输出错误");
}

TEST(ErrorDescriptionTest, recorderErrorIsRecognisedBehindAPointer) {
    const auto error = std::make_exception_ptr(RecordingError(exportFailed));
    EXPECT_EQ(errorDescription(error, english), "Vantoro could not create the final M4A file.");
    EXPECT_EQ(errorDescription(error, chinese), "Vantoro 无法创建最终 M4A 文件。");
}

} // namespace
} // namespace vantoro::testing
