// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/error_description.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "l10n/l10n.h"
#include "l10n/texts/bilingual_text.h"

namespace vantoro {

namespace {

struct SystemError {
    int number;
    std::string_view chinese;
};

constexpr SystemError systemErrors[] = {
    {EPERM, "操作不被允许"},
    {ENOENT, "文件或文件夹不存在"},
    {EIO, "输入/输出错误"},
    {ENXIO, "设备不存在"},
    {EBADF, "文件未打开"},
    {EAGAIN, "资源暂时不可用"},
    {ENOMEM, "内存不足"},
    {EACCES, "权限不足"},
    {EBUSY, "设备或资源正忙"},
    {EEXIST, "已存在同名文件"},
    {EXDEV, "不在同一个文件系统中"},
    {ENODEV, "设备不存在"},
    {ENOTDIR, "不是文件夹"},
    {EISDIR, "是一个文件夹"},
    {EINVAL, "参数无效"},
    {ENFILE, "系统打开的文件过多"},
    {EMFILE, "程序打开的文件过多"},
    {EFBIG, "文件过大"},
    {ENOSPC, "磁盘空间不足"},
    {EROFS, "文件系统为只读"},
    {EMLINK, "链接过多"},
    {ENAMETOOLONG, "名称过长"},
    {ENOLCK, "无法锁定文件"},
    {ENOTEMPTY, "文件夹不为空"},
    {ELOOP, "符号链接层数过多"},
    {EOVERFLOW, "数值过大"},
    {EOPNOTSUPP, "不支持此操作"},
    {ENOTCONN, "连接已断开"},
    {ETIMEDOUT, "操作超时"},
    {EHOSTDOWN, "主机没有响应"},
    {EHOSTUNREACH, "无法连接主机"},
    {ESTALE, "网络文件已失效"},
    {EUCLEAN, "文件系统已损坏"},
    {EREMOTEIO, "远程输入/输出错误"},
    {EDQUOT, "超出磁盘配额"},
    {ENOMEDIUM, "没有存储介质"},
    {ECANCELED, "操作已取消"},
};

bool isOfTheSystem(const std::error_code& code) {
    return code.category() == std::system_category() || code.category() == std::generic_category();
}

/// In the order of the codes.
constexpr std::array<std::string_view, 24> chineseFailures{
    "无法初始化声音系统。",
    "无法连接声音服务器。",
    "声音服务器没有响应。",
    "与声音服务器的连接已断开。",
    "没有默认麦克风。",
    "找不到麦克风“%1”。",
    "麦克风没有传来任何声音。",
    "麦克风不再传来声音。",
    "麦克风已断开。",
    "录音未能及时开始。",
    "无法创建录音流。",
    "无法连接录音流。",
    "声音服务器结束了录音。",
    "声音服务器结束了录音：%1。",
    "无法开始写入录音文件。",
    "无法写入音频数据。",
    "无法完成录音文件。",
    "没有声音写入文件。",
    "录音文件已损坏。",
    "系统中没有 AAC 编码器。",
    "系统中没有 AAC 解码器。",
    "音频编码或解码失败。",
    "无法加载程序的一个组件：%1。",
    "程序在运行期间已更新，请退出后重新启动。",
};
static_assert(chineseFailures.size() == static_cast<std::size_t>(FailureCode::programUpdated) + 1);

/// In the order of the actions.
constexpr std::array<std::string_view, 12> chineseFileFailures{
    "无法创建文件夹 %1：%2。", "无法创建 %1：%2。", "无法在 %1 中创建文件：%2。",
    "无法打开 %1：%2。",       "无法访问 %1：%2。", "无法查看 %1：%2。",
    "无法锁定 %1：%2。",       "无法读取 %1：%2。", "无法写入 %1：%2。",
    "无法删除 %1：%2。",       "无法列出 %1：%2。", "无法获取 %1 的可用空间：%2。",
};
static_assert(chineseFileFailures.size() ==
              static_cast<std::size_t>(FileAction::countFreeSpace) + 1);

std::string chineseText(const Failure& failure) {
    return filled(chineseFailures.at(static_cast<std::size_t>(failure.code())),
                  {failure.argument()});
}

std::string chineseText(const FileFailure& failure) {
    return filled(chineseFileFailures.at(static_cast<std::size_t>(failure.action())),
                  {failure.name(), systemWords(failure.code(), AppLanguage::chinese)});
}

std::string inChinese(const std::exception& error) {
    if (const auto* const failure = dynamic_cast<const Failure*>(&error)) {
        return chineseText(*failure);
    }
    if (const auto* const failure = dynamic_cast<const FileFailure*>(&error)) {
        return chineseText(*failure);
    }
    if (const auto* const failure = dynamic_cast<const std::system_error*>(&error)) {
        return systemWords(failure->code(), AppLanguage::chinese) + "。";
    }
    return std::string("意外错误：") + error.what();
}

/// `what()`, but for what only a developer understands.
std::string inEnglish(const std::exception& error) {
    const auto* const failure = dynamic_cast<const Failure*>(&error);
    return failure != nullptr && failure->code() == FailureCode::recordingDamaged
               ? "The recording file is damaged."
               : error.what();
}

} // namespace

std::string systemWords(const std::error_code& code, AppLanguage language) {
    const auto* const known = std::ranges::find(systemErrors, code.value(), &SystemError::number);
    const bool isKnown = isOfTheSystem(code) && known != std::end(systemErrors);
    return language == AppLanguage::chinese && isKnown ? std::string(known->chinese)
                                                       : code.message();
}

std::string errorDescription(const RecordingError& error, AppLanguage language) {
    using enum RecordingError::Case;
    using Key = L10n::Key;
    switch (error.which()) {
    case writerFailed:
        return (language == AppLanguage::chinese ? "录音失败：" : "Recording failed: ") +
               (error.cause() ? errorDescription(error.cause(), language) : error.message());
    case noAudioSource:
        return L10n::text(Key::noAudioSource, language);
    case screenPermissionDenied:
        return L10n::text(Key::screenPermissionDenied, language);
    case microphonePermissionDenied:
        return L10n::text(Key::microphonePermissionDenied, language);
    case noDisplayAvailable:
        return L10n::text(Key::noDisplayAvailable, language);
    case writerSetupFailed:
        return L10n::text(Key::writerSetupFailed, language);
    case noAudioCaptured:
        return L10n::text(Key::noAudioCaptured, language);
    case exportFailed:
        return L10n::text(Key::exportFailed, language);
    case diskTooFull:
        return L10n::text(Key::diskTooFull, language);
    }
    return {};
}

std::string errorDescription(const std::exception_ptr& error, AppLanguage language) {
    try {
        std::rethrow_exception(error);
    } catch (const RecordingError& recordingError) {
        return errorDescription(recordingError, language);
    } catch (const std::exception& other) {
        return language == AppLanguage::english ? inEnglish(other) : inChinese(other);
    }
}

std::string errorReason(const std::exception_ptr& error, AppLanguage language) {
    auto text = errorDescription(error, language);
    for (const std::string_view fullStop : {".", "。"}) {
        if (text.ends_with(fullStop)) {
            text.resize(text.size() - fullStop.size());
        }
    }
    return text;
}

} // namespace vantoro
