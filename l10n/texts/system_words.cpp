// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/system_words.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string_view>

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

} // namespace

std::string systemWords(const std::error_code& code, AppLanguage language) {
    const auto* const known = std::ranges::find(systemErrors, code.value(), &SystemError::number);
    const bool isKnown = isOfTheSystem(code) && known != std::end(systemErrors);
    return language == AppLanguage::chinese && isKnown ? std::string(known->chinese)
                                                       : code.message();
}

} // namespace vantoro
