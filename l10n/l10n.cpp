// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/l10n.h"

#include <chrono>

#include "l10n/texts/error_description.h"

namespace vantoro {

namespace {

/// Rounded up, so that a loss never reads as 0 seconds.
std::string wholeSeconds(SoundLoss::Duration length) {
    return std::to_string(std::chrono::ceil<std::chrono::seconds>(length).count());
}

} // namespace

AppLanguage L10n::language() const {
    const auto stored = preferences_.get(Preference::appLanguage);
    return stored ? languageOf(*stored).value_or(AppLanguage::chinese) : AppLanguage::chinese;
}

std::string L10n::text(Key key) const {
    return text(key, language());
}

std::string L10n::text(Key key, AppLanguage language) {
    const auto& table = language == AppLanguage::english ? english() : chinese();
    const auto row = table.find(key);
    return row == table.end() ? std::string() : std::string(row->second);
}

std::string L10n::recovered(std::size_t count) const {
    return count == 1 ? say({"A previously interrupted recording was recovered and saved.",
                             "已恢复并保存一段此前中断的录音。"})
                      : say({"%1 previously interrupted recordings were recovered and saved.",
                             "已恢复并保存 %1 段此前中断的录音。"},
                            {std::to_string(count)});
}

std::string L10n::soundNotTakenInTime(SoundLoss::Duration length) const {
    const auto seconds = wholeSeconds(length);
    return seconds == "1"
               ? say({"The computer did not keep up: %1 second of the recording is silent.",
                      "电脑一度没有响应，录音中有约 %1 秒没有声音。"},
                     {seconds})
               : say({"The computer did not keep up: %1 seconds of the recording are silent.",
                      "电脑一度没有响应，录音中有约 %1 秒没有声音。"},
                     {seconds});
}

std::string L10n::soundNotWritten(SoundLoss::Duration length,
                                  const std::exception_ptr& reason) const {
    const auto seconds = wholeSeconds(length);
    const auto why = reason ? say({": %1.", "%1。"}, {errorReason(reason, language())})
                            : say({", which was too slow.", "磁盘太慢。"});
    return seconds == "1" ? say({"About %1 second of sound could not be written to the disk%2",
                                 "约 %1 秒的声音未能写入磁盘：%2"},
                                {seconds, why})
                          : say({"About %1 seconds of sound could not be written to the disk%2",
                                 "约 %1 秒的声音未能写入磁盘：%2"},
                                {seconds, why});
}

std::string L10n::restSaved() const {
    return say({"Everything else was saved.", "其余内容已保存。"});
}

std::string L10n::notRecovered(const std::filesystem::path& recording,
                               const std::exception_ptr& reason) const {
    return say({"An interrupted recording could not be saved: %1. It stays as it is: %2",
                "有一段中断的录音未能保存：%1。它仍保留在：%2"},
               {errorReason(reason, language()), recording.string()});
}

std::string L10n::mark(int number) const {
    return say({"Mark %1", "标记 %1"}, {std::to_string(number)});
}

std::string L10n::roomLeft(std::int64_t minutes) const {
    if (minutes < 1) {
        return say({"The disk is nearly full: there is room for less than a minute of recording.",
                    "磁盘空间即将用尽：剩余空间只够录音不到 1 分钟。"});
    }
    return minutes == 1
               ? say({"The disk is nearly full: there is room for about 1 minute of recording.",
                      "磁盘空间即将用尽：剩余空间大约还能录音 1 分钟。"})
               : say({"The disk is nearly full: there is room for about %1 minutes of recording.",
                      "磁盘空间即将用尽：剩余空间大约还能录音 %1 分钟。"},
                     {std::to_string(minutes)});
}

std::string L10n::originalsKept(const std::vector<std::filesystem::path>& originals) const {
    if (originals.empty()) {
        return {};
    }
    return originals.size() == 1
               ? say({"Part of it could not be read. The damaged original was kept in the "
                      "recording folder as %1.",
                      "其中有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中：%1。"},
                     {originals.front().filename().string()})
               : say({"Parts of %1 of them could not be read. The damaged originals were kept in "
                      "the recording folder. Their names end in “.incomplete.mov”.",
                      "其中 %1 段录音有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中，"
                      "文件名以“.incomplete.mov”结尾。"},
                     {std::to_string(originals.size())});
}

std::string L10n::originalKept(const std::filesystem::path& original) const {
    return say({"Part of a recording could not be read. The damaged original was kept: %1",
                "有一段录音的一部分内容无法读取，损坏的原始文件已保留：%1"},
               {original.string()});
}

std::string L10n::tracksNotKept(const TracksNotKept& failure) const {
    return say(
        {"The sources could not be saved separately: %1. A file with all of them was kept: %2",
         "各声音来源未能单独保存：%1。包含全部来源的文件已保留：%2"},
        {errorReason(failure.reason, language()), failure.original.string()});
}

std::string L10n::newVersionAvailable(std::string_view version) const {
    return say({"Version %1 is available.", "发现新版本 %1。"}, {std::string(version)});
}

std::string L10n::runningVersion(std::string_view version) const {
    return say({"Version %1", "当前版本 %1"}, {std::string(version)});
}

std::string L10n::conditionInShort(SourceCondition condition) const {
    switch (condition) {
    case SourceCondition::silent:
        return say({"only silence", "没有声音"});
    case SourceCondition::muted:
        return say({"muted", "已静音"});
    case SourceCondition::coded:
        return say({"coded, not recorded", "编码音频未录制"});
    case SourceCondition::delivering:
        break;
    }
    return {};
}

std::string L10n::condition(SourceCondition condition) const {
    switch (condition) {
    case SourceCondition::silent:
        return say({"Nothing but silence for at least 10 seconds", "至少 10 秒没有任何声音"});
    case SourceCondition::muted:
        return say({"Muted in the desktop's sound settings", "已在系统声音设置中静音"});
    case SourceCondition::coded:
        return say({"An application sends coded sound straight to the receiver, which cannot be "
                    "recorded. Switch passthrough off in that application",
                    "有应用将编码音频直通到功放，无法录制。请在该应用中关闭直通"});
    case SourceCondition::delivering:
        break;
    }
    return {};
}

std::string L10n::noMicrophone() const {
    return say({"No microphone found", "未找到麦克风"});
}

std::string L10n::quit() const {
    return say({"Quit", "退出"});
}

std::string L10n::checkpointKept() const {
    return say({" A recoverable recording checkpoint was kept in the recording folder.",
                " 已保留可恢复的录音检查点。"});
}

std::string L10n::say(const BilingualText& text, const std::vector<std::string>& arguments) const {
    return text.in(language(), arguments);
}

std::string L10n::sentences(std::initializer_list<std::string> texts) {
    std::string joined;
    for (const auto& text : texts) {
        const bool isApart = joined.empty() || joined.ends_with("。") || text.empty();
        joined += isApart ? text : ' ' + text;
    }
    return joined;
}

} // namespace vantoro
