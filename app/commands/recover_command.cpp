// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/recover_command.h"

#include <chrono>
#include <iostream>
#include <stop_token>
#include <system_error>

#include "app/commands/terminal.h"
#include "engine/recorder/logged_recorder.h"
#include "l10n/texts/command_texts.h"

namespace vantoro {

namespace {

/// The exit status if a recording was salvaged only in part.
constexpr int partlyUnreadable = 3;

/// Prints the result and returns the exit status.
int report(const SalvageResult& result, const std::filesystem::path& folder, Terminal& terminal,
           const L10n& texts) {
    for (const auto& failure : result.failures) {
        terminal.message(texts.notRecovered(failure.location, failure.error));
    }
    for (const auto& original : result.keptOriginals) {
        terminal.message(texts.originalKept(original));
    }
    for (const auto& failure : result.tracksNotKept) {
        terminal.message(texts.tracksNotKept(failure));
    }
    for (const auto& file : result.recordings) {
        std::cout << file.string() << "\n";
    }
    if (!std::cout.flush()) {
        terminal.message(CommandText::recordingsNotPrinted.in(texts.language(), {folder.string()}));
        return 1;
    }
    if (!result.failures.empty() || !result.tracksNotKept.empty()) {
        return 1;
    }
    return result.keptOriginals.empty() ? 0 : partlyUnreadable;
}

} // namespace

int runRecoverCommand(const RecoverCommand& command, const std::filesystem::path& defaultFolder,
                      const std::optional<TrackNames>& trackNames, const SalvagePlatform& platform,
                      RecordingLog& log, Ending& ending, const L10n& texts) {
    Terminal terminal;
    std::error_code unreadable;
    // The default folder may not exist yet.
    if (command.folder && !std::filesystem::is_directory(*command.folder, unreadable)) {
        terminal.message(
            CommandText::folderMissing.in(texts.language(), {command.folder->string()}));
        return 1;
    }
    const auto folder = std::filesystem::absolute(command.folder.value_or(defaultFolder));
    std::stop_source stop;
    ending.progressed({.folder = folder, .language = texts.language()});
    const Ending::Handler handler(ending, [&stop] { stop.request_stop(); });
    const auto begin = std::chrono::steady_clock::now();
    ProgressAccount work(WorkProgress::Work::salvage);
    const auto result = recoverIncompleteRecordings(
        platform, folder, trackNames, stop.get_token(), [&](double fraction) {
            ending.progressed();
            const auto now = std::chrono::steady_clock::now();
            work.advance(fraction, now);
            if (now - begin >= unshownWork) {
                terminal.showLine(savingLine(work.progress(), texts));
            }
        });
    logSalvage(log, result);
    terminal.clearLine();
    const int status = report(result, folder, terminal, texts);
    ending.concluded(status);
    return status;
}

} // namespace vantoro
