// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/l10n.h"

#include <chrono>

#include "l10n/texts/error_description.h"

namespace vantoro {

namespace {

/// Rounds up, so that a loss never reads as 0 seconds.
std::int64_t wholeSeconds(SoundLoss::Duration length) {
    return std::chrono::ceil<std::chrono::seconds>(length).count();
}

std::string secondsInEnglish(std::int64_t number) {
    return std::to_string(number) + (number == 1 ? " second" : " seconds");
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
    return std::string(language == AppLanguage::english ? lookUp(key, english(), chinese())
                                                        : lookUp(key, chinese(), english()));
}

std::string L10n::recovered(std::size_t count) const {
    const auto number = std::to_string(count);
    if (language() == AppLanguage::english) {
        return count == 1 ? "A previously interrupted recording was recovered and saved."
                          : number + " previously interrupted recordings were recovered and saved.";
    }
    return count == 1 ? "已恢复并保存一段此前中断的录音。"
                      : "已恢复并保存 " + number + " 段此前中断的录音。";
}

std::string L10n::soundNotTakenInTime(SoundLoss::Duration length) const {
    const auto number = wholeSeconds(length);
    return language() == AppLanguage::english
               ? "The computer did not keep up: " + secondsInEnglish(number) +
                     " of the recording " + (number == 1 ? "is" : "are") + " silent."
               : "电脑一度没有响应，录音中有约 " + std::to_string(number) + " 秒没有声音。";
}

std::string L10n::soundNotWritten(SoundLoss::Duration length,
                                  const std::exception_ptr& reason) const {
    const auto number = wholeSeconds(length);
    if (language() == AppLanguage::english) {
        return "About " + secondsInEnglish(number) + " of sound could not be written to the disk" +
               (reason ? ": " + errorReason(reason, AppLanguage::english) + "."
                       : ", which was too slow.");
    }
    return "约 " + std::to_string(number) + " 秒的声音未能写入磁盘：" +
           (reason ? errorReason(reason, AppLanguage::chinese) : "磁盘太慢") + "。";
}

std::string L10n::restSaved() const {
    return language() == AppLanguage::english ? "Everything else was saved." : "其余内容已保存。";
}

std::string L10n::notRecovered(const std::filesystem::path& recording,
                               const std::exception_ptr& reason) const {
    const auto why = errorReason(reason, language());
    return language() == AppLanguage::english
               ? "An interrupted recording could not be saved: " + why +
                     ". It stays as it is: " + recording.string()
               : "有一段中断的录音未能保存：" + why + "。它仍保留在：" + recording.string();
}

std::string L10n::roomLeft(std::int64_t minutes) const {
    const auto number = std::to_string(minutes);
    if (language() == AppLanguage::english) {
        const std::string left = minutes < 1    ? "less than a minute"
                                 : minutes == 1 ? "about 1 minute"
                                                : "about " + number + " minutes";
        return "The disk is nearly full: there is room for " + left + " of recording.";
    }
    return minutes < 1 ? "磁盘空间即将用尽：剩余空间只够录音不到 1 分钟。"
                       : "磁盘空间即将用尽：剩余空间大约还能录音 " + number + " 分钟。";
}

std::string L10n::originalsKept(const std::vector<std::filesystem::path>& originals) const {
    if (originals.empty()) {
        return {};
    }
    const bool isEnglish = language() == AppLanguage::english;
    if (originals.size() == 1) {
        const auto name = originals.front().filename().string();
        return isEnglish
                   ? "Part of it could not be read. The damaged original was kept in the "
                     "recording folder as " +
                         name + "."
                   : "其中有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中：" + name + "。";
    }
    const auto number = std::to_string(originals.size());
    return isEnglish ? "Parts of " + number +
                           " of them could not be read. The damaged originals were kept in the "
                           "recording folder. Their names end in “.incomplete.mov”."
                     : "其中 " + number +
                           " 段录音有一部分内容无法读取，损坏的原始文件已保留在录音文件夹中，"
                           "文件名以“.incomplete.mov”结尾。";
}

std::string L10n::originalKept(const std::filesystem::path& original) const {
    return language() == AppLanguage::english
               ? "Part of a recording could not be read. The damaged original was kept: " +
                     original.string()
               : "有一段录音的一部分内容无法读取，损坏的原始文件已保留：" + original.string();
}

std::string L10n::newVersionAvailable(std::string_view version) const {
    const std::string inserted(version);
    return language() == AppLanguage::english ? "Version " + inserted + " is available."
                                              : "发现新版本 " + inserted + "。";
}

std::string L10n::runningVersion(std::string_view version) const {
    const std::string prefix = language() == AppLanguage::english ? "Version " : "当前版本 ";
    return prefix + std::string(version);
}

std::string L10n::conditionInShort(SourceCondition condition) const {
    const bool isEnglish = language() == AppLanguage::english;
    switch (condition) {
    case SourceCondition::silent:
        return isEnglish ? "only silence" : "没有声音";
    case SourceCondition::muted:
        return isEnglish ? "muted" : "已静音";
    case SourceCondition::coded:
        return isEnglish ? "coded, not recorded" : "编码音频未录制";
    case SourceCondition::delivering:
        break;
    }
    return {};
}

std::string L10n::condition(SourceCondition condition) const {
    const bool isEnglish = language() == AppLanguage::english;
    switch (condition) {
    case SourceCondition::silent:
        return isEnglish ? "Nothing but silence for at least 10 seconds" : "至少 10 秒没有任何声音";
    case SourceCondition::muted:
        return isEnglish ? "Muted in the desktop's sound settings" : "已在系统声音设置中静音";
    case SourceCondition::coded:
        return isEnglish
                   ? "An application sends coded sound straight to the receiver, which cannot "
                     "be recorded. Switch passthrough off in that application"
                   : "有应用将编码音频直通到功放，无法录制。请在该应用中关闭直通";
    case SourceCondition::delivering:
        break;
    }
    return {};
}

std::string L10n::quit() const {
    return language() == AppLanguage::english ? "Quit" : "退出";
}

std::string L10n::sentences(std::initializer_list<std::string> texts) {
    std::string joined;
    for (const auto& text : texts) {
        const bool isApart = joined.empty() || joined.ends_with("。") || text.empty();
        joined += isApart ? text : ' ' + text;
    }
    return joined;
}

std::string L10n::checkpointKept() const {
    return language() == AppLanguage::english
               ? " A recoverable recording checkpoint was kept in the recording folder."
               : " 已保留可恢复的录音检查点。";
}

std::string_view lookUp(L10n::Key key, const L10n::Table& preferred, const L10n::Table& other) {
    for (const auto* table : {&preferred, &other}) {
        if (const auto row = table->find(key); row != table->end()) {
            return row->second;
        }
    }
    return {};
}

} // namespace vantoro
