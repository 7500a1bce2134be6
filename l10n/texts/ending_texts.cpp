// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/ending_texts.h"

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

namespace {

struct EndingTexts {
    BilingualText hangs;
    BilingualText asked;
    BilingualText kept;
};

/// In the order of the works.
constexpr EndingTexts endings[] = {
    {{"The recording could not begin in time: the folder %1, the sound server or the desktop does "
      "not answer.",
      "录音未能及时开始：文件夹 %1、声音服务器或桌面没有响应。"},
     {"Vantoro ended before the recording had begun.", "录音尚未开始，Vantoro 已退出。"},
     {" If a temporary file was begun in %1, it is kept.",
      "如果 %1 中已创建临时文件，该文件会保留。"}},
    {{"Saving makes no progress; the disk of %1 probably does not answer. The recording is not "
      "finished.",
      "保存没有进展，%1 所在的磁盘可能没有响应。录音尚未完成。"},
     {"Vantoro ended before the recording was finished.", "录音尚未完成，Vantoro 已退出。"},
     {" What has reached the disk is kept in a temporary file in %1. Open Vantoro again, or run "
      "vantoro recover, to finish it.",
      "已写入磁盘的内容保留在 %1 的临时文件中。请重新打开 Vantoro 或运行 vantoro recover "
      "以完成录音。"}},
    {{"Vantoro has stopped waiting; the disk of %1 probably does not answer.",
      "Vantoro 不再等待：%1 所在的磁盘可能没有响应。"},
     {"Vantoro ended at once.", "Vantoro 已立即退出。"},
     {" Recordings in %1 that are not finished are kept for the next time.",
      "%1 中未完成的录音会保留，留待下次处理。"}},
};

} // namespace

std::string endingText(EndingWork work, EndingCause cause, const std::string& folder,
                       AppLanguage language) {
    const auto& texts = endings[static_cast<std::size_t>(work)];
    const auto& why = cause == EndingCause::standstill ? texts.hangs : texts.asked;
    return why.in(language, {folder}) + texts.kept.in(language, {folder});
}

} // namespace vantoro
