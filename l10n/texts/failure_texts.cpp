// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/failure_texts.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "l10n/filled.h"
#include "l10n/texts/system_words.h"

namespace vantoro {

namespace {

/// In the order of the codes.
constexpr std::array<std::string_view, 24> failures{
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
static_assert(failures.size() == static_cast<std::size_t>(FailureCode::programUpdated) + 1);

/// In the order of the actions.
constexpr std::array<std::string_view, 12> fileFailures{
    "无法创建文件夹 %1：%2。", "无法创建 %1：%2。", "无法在 %1 中创建文件：%2。",
    "无法打开 %1：%2。",       "无法访问 %1：%2。", "无法查看 %1：%2。",
    "无法锁定 %1：%2。",       "无法读取 %1：%2。", "无法写入 %1：%2。",
    "无法删除 %1：%2。",       "无法列出 %1：%2。", "无法获取 %1 的可用空间：%2。",
};
static_assert(fileFailures.size() == static_cast<std::size_t>(FileAction::countFreeSpace) + 1);

} // namespace

std::string chineseText(const Failure& failure) {
    return filled(failures.at(static_cast<std::size_t>(failure.code())), {failure.argument()});
}

std::string chineseText(const FileFailure& failure) {
    return filled(fileFailures.at(static_cast<std::size_t>(failure.action())),
                  {failure.name(), systemWords(failure.code(), AppLanguage::chinese)});
}

} // namespace vantoro
