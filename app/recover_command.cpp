// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/recover_command.h"

#include <iostream>
#include <stop_token>
#include <system_error>
#include <thread>

#include "app/live_line.h"
#include "app/terminal.h"

namespace vantoro {

namespace {

/// Asks for a stop when a signal comes, while it lives.
class StopOnSignal {
public:
    explicit StopOnSignal(StopSignals& signals)
        : signals_(signals), waiter_([this] {
              if (signals_.wait(std::nullopt) == StopSignals::Event::signal) {
                  stop_.request_stop();
              }
          }) {}

    StopOnSignal(const StopOnSignal&) = delete;
    StopOnSignal& operator=(const StopOnSignal&) = delete;

    ~StopOnSignal() {
        signals_.wake();
        waiter_.join();
    }

    std::stop_token token() const { return stop_.get_token(); }

private:
    StopSignals& signals_;
    std::stop_source stop_;
    std::thread waiter_;
};

bool isFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

} // namespace

int runRecoverCommand(const RecoverCommand& command, const std::filesystem::path& defaultFolder,
                      const SalvagePlatform& platform, StopSignals& signals, const L10n& texts) {
    Terminal terminal;
    // The default one need not have been made yet.
    if (command.folder && !isFolder(*command.folder)) {
        terminal.message("There is no folder " + command.folder->string() + ".");
        return 1;
    }
    const auto folder = std::filesystem::absolute(command.folder.value_or(defaultFolder));
    std::vector<std::filesystem::path> files;
    {
        const StopOnSignal stop(signals);
        files = recoverIncompleteRecordings(platform, folder, stop.token(), [&](double fraction) {
            terminal.showLine(savingLine(fraction, texts));
        });
    }
    terminal.clearLine();
    for (const auto& file : files) {
        std::cout << file.string() << "\n";
    }
    std::cout << std::flush;
    if (!std::cout) {
        terminal.message("The recovered recordings are in " + folder.string() +
                         "; their names could not be printed.");
        return 1;
    }
    return 0;
}

} // namespace vantoro
