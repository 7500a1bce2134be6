// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/error_description.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <future>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using enum AppLanguage;
using Code = FailureCode;

struct FailureRow {
    FailureCode code;
    const char* english;
    const char* chinese;
};

/// Every code, in its order; the argument is ARGUMENT.
const std::vector<FailureRow> failureRows{
    {Code::soundSystemNotInitialized, "The sound system could not be initialized.",
     "无法初始化声音系统。"},
    {Code::serverUnreachable, "The sound server cannot be reached.", "无法连接声音服务器。"},
    {Code::serverSilent, "The sound server does not respond.", "声音服务器没有响应。"},
    {Code::connectionLost, "The connection to the sound server was lost.",
     "与声音服务器的连接已断开。"},
    {Code::noDefaultMicrophone, "There is no default microphone.", "没有默认麦克风。"},
    {Code::microphoneUnknown, "The microphone \"ARGUMENT\" was not found.",
     "找不到麦克风“ARGUMENT”。"},
    {Code::microphoneSilent, "The microphone does not deliver any sound.",
     "麦克风没有传来任何声音。"},
    {Code::microphoneStalled, "The microphone no longer delivers sound.", "麦克风不再传来声音。"},
    {Code::microphoneDisconnected, "The microphone was disconnected.", "麦克风已断开。"},
    {Code::captureNotStarted, "The recording could not be started in time.", "录音未能及时开始。"},
    {Code::streamNotMade, "A recording stream could not be created.", "无法创建录音流。"},
    {Code::streamNotConnected, "A recording stream could not be connected.", "无法连接录音流。"},
    {Code::streamEnded, "The sound server ended the recording.", "声音服务器结束了录音。"},
    {Code::streamEndedBecause, "The sound server ended the recording: ARGUMENT.",
     "声音服务器结束了录音：ARGUMENT。"},
    {Code::writerNotStarted, "Unable to start the file writer.", "无法开始写入录音文件。"},
    {Code::sampleNotWritten, "Unable to write an audio sample.", "无法写入音频数据。"},
    {Code::recordingNotFinished, "Unable to finish the recording.", "无法完成录音文件。"},
    {Code::noSoundWritten, "No sound reached the file.", "没有声音写入文件。"},
    {Code::recordingDamaged, "The recording file is damaged.", "录音文件已损坏。"},
    {Code::encoderMissing, "There is no AAC coder on this system.", "系统中没有 AAC 编码器。"},
    {Code::decoderMissing, "There is no AAC decoder on this system.", "系统中没有 AAC 解码器。"},
    {Code::codecFailed, "ARGUMENT", "音频编码或解码失败。"},
    {Code::partNotLoaded, "A part of the program cannot be loaded: ARGUMENT",
     "无法加载程序的一个组件：ARGUMENT。"},
    {Code::programUpdated, "The program was updated while it ran: quit it and start it again.",
     "程序在运行期间已更新，请退出后重新启动。"},
};

std::string without(std::string text, const std::string& part) {
    if (const auto place = text.find(part); place != std::string::npos) {
        text.erase(place, part.size());
    }
    return text;
}

bool hasLatinLetters(const std::string& text) {
    return std::ranges::any_of(text,
                               [](unsigned char c) { return c < 0x80 && std::isalpha(c) != 0; });
}

TEST(FailureTextsTest, everyCodeHasItsSentenceInEitherLanguage) {
    ASSERT_EQ(failureRows.size(), static_cast<std::size_t>(Code::programUpdated) + 1);
    for (std::size_t i = 0; i < failureRows.size(); ++i) {
        const auto& [code, inEnglish, inChinese] = failureRows[i];
        EXPECT_EQ(static_cast<std::size_t>(code), i);
        const auto error = std::make_exception_ptr(Failure(code, "ARGUMENT"));
        EXPECT_EQ(errorDescription(error, english), inEnglish);
        EXPECT_EQ(errorDescription(error, chinese), inChinese);
        EXPECT_FALSE(hasLatinLetters(without(without(inChinese, "ARGUMENT"), "AAC"))) << inChinese;
    }
}

struct ActionRow {
    FileAction action;
    const char* chinese;
};

TEST(FailureTextsTest, everyActionOnAFileHasItsChineseSentence) {
    int next = 0;
    for (const auto& [action, inChinese] : {
             ActionRow{FileAction::createFolder, "无法创建文件夹 a.mov：输入/输出错误。"},
             ActionRow{FileAction::create, "无法创建 a.mov：输入/输出错误。"},
             ActionRow{FileAction::createIn, "无法在 a.mov 中创建文件：输入/输出错误。"},
             ActionRow{FileAction::open, "无法打开 a.mov：输入/输出错误。"},
             ActionRow{FileAction::find, "无法访问 a.mov：输入/输出错误。"},
             ActionRow{FileAction::examine, "无法查看 a.mov：输入/输出错误。"},
             ActionRow{FileAction::lock, "无法锁定 a.mov：输入/输出错误。"},
             ActionRow{FileAction::read, "无法读取 a.mov：输入/输出错误。"},
             ActionRow{FileAction::write, "无法写入 a.mov：输入/输出错误。"},
             ActionRow{FileAction::remove, "无法删除 a.mov：输入/输出错误。"},
             ActionRow{FileAction::list, "无法列出 a.mov：输入/输出错误。"},
             ActionRow{FileAction::countFreeSpace, "无法获取 a.mov 的可用空间：输入/输出错误。"},
         }) {
        EXPECT_EQ(static_cast<int>(action), next++);
        EXPECT_EQ(errorDescription(
                      std::make_exception_ptr(FileFailure(action, "/takes/a.mov", EIO)), chinese),
                  inChinese);
    }
    EXPECT_EQ(next, static_cast<int>(FileAction::countFreeSpace) + 1);
}

TEST(SystemWordsTest, whatADiskMayAnswerHasChineseWords) {
    for (const int number :
         {EPERM,     ENOENT,    EIO,       ENXIO,     EBADF,        EAGAIN,    ENOMEM,
          EACCES,    EBUSY,     EEXIST,    EXDEV,     ENODEV,       ENOTDIR,   EISDIR,
          EINVAL,    ENFILE,    EMFILE,    EFBIG,     ENOSPC,       EROFS,     EMLINK,
          ENOLCK,    ENOTEMPTY, ELOOP,     ESTALE,    ENAMETOOLONG, EDQUOT,    EUCLEAN,
          ENOTSUP,   ENOTCONN,  ETIMEDOUT, EHOSTDOWN, EOVERFLOW,    EREMOTEIO, EHOSTUNREACH,
          ENOMEDIUM, ECANCELED}) {
        for (const auto* const category : {&std::system_category(), &std::generic_category()}) {
            const std::error_code code(number, *category);
            const auto words = systemWords(code, chinese);
            EXPECT_FALSE(words.empty());
            EXPECT_FALSE(hasLatinLetters(words)) << words;
            EXPECT_EQ(systemWords(code, english), code.message());
        }
    }
    EXPECT_EQ(systemWords({ENOSPC, std::system_category()}, chinese), "磁盘空间不足");
    EXPECT_EQ(systemWords({EACCES, std::system_category()}, chinese), "权限不足");
}

TEST(SystemWordsTest, anythingElseHasTheSystemsWords) {
    const std::error_code odd(ELIBBAD, std::system_category());
    EXPECT_EQ(systemWords(odd, chinese), odd.message());
    const std::error_code foreign(ENOSPC, std::future_category());
    EXPECT_EQ(systemWords(foreign, chinese), foreign.message());
}

} // namespace
} // namespace vantoro::testing
