// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/ending_texts.h"

namespace vantoro {

namespace {

std::string inEnglish(EndingWork work, EndingCause cause, const std::string& folder) {
    const bool hangs = cause == EndingCause::standstill;
    switch (work) {
    case EndingWork::start:
        return (hangs ? "The recording could not begin in time: the folder " + folder +
                            ", the sound server or the desktop does not answer."
                      : "Vantoro ended before the recording had begun.") +
               " If a temporary file was begun in " + folder + ", it is kept.";
    case EndingWork::saving:
        return (hangs ? "Saving makes no progress; the disk of " + folder +
                            " probably does not answer. The recording is not finished."
                      : "Vantoro ended before the recording was finished.") +
               " What has reached the disk is kept in a temporary file in " + folder +
               ". Open Vantoro again, or run vantoro recover, to finish it.";
    case EndingWork::salvage:
        break;
    }
    return (hangs ? "Vantoro has stopped waiting; the disk of " + folder +
                        " probably does not answer."
                  : std::string("Vantoro ended at once.")) +
           " Recordings in " + folder + " that are not finished are kept for the next time.";
}

std::string inChinese(EndingWork work, EndingCause cause, const std::string& folder) {
    const bool hangs = cause == EndingCause::standstill;
    switch (work) {
    case EndingWork::start:
        return (hangs ? "录音未能及时开始：文件夹 " + folder + "、声音服务器或桌面没有响应。"
                      : std::string("录音尚未开始，Vantoro 已退出。")) +
               "如果 " + folder + " 中已创建临时文件，该文件会保留。";
    case EndingWork::saving:
        return (hangs ? "保存没有进展，" + folder + " 所在的磁盘可能没有响应。录音尚未完成。"
                      : std::string("录音尚未完成，Vantoro 已退出。")) +
               "已写入磁盘的内容保留在 " + folder +
               " 的临时文件中。请重新打开 Vantoro 或运行 vantoro recover 以完成录音。";
    case EndingWork::salvage:
        break;
    }
    return (hangs ? "Vantoro 不再等待：" + folder + " 所在的磁盘可能没有响应。"
                  : std::string("Vantoro 已立即退出。")) +
           folder + " 中未完成的录音会保留，留待下次处理。";
}

} // namespace

std::string endingText(EndingWork work, EndingCause cause, const std::string& folder,
                       AppLanguage language) {
    return language == AppLanguage::english ? inEnglish(work, cause, folder)
                                            : inChinese(work, cause, folder);
}

} // namespace vantoro
