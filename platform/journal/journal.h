// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>

#include "engine/ports/recording_log.h"

namespace vantoro::journal {

/// How the journal knows this program.
constexpr const char* identifier = "vantoro";

/// The system's journal, in its own protocol: the library's function waits for a journal that
/// hangs. An entry that the journal does not take at once is lost. Any thread.
class Journal final : public RecordingLog {
public:
    enum class WithoutJournal : std::uint8_t {
        discard,
        printFaults, ///< warnings and errors, on standard error
    };

    explicit Journal(WithoutJournal withoutJournal,
                     std::filesystem::path socket = "/run/systemd/journal/socket");

    void write(Level level, const std::string& message,
               const std::string& recording) noexcept override;

private:
    WithoutJournal withoutJournal_;
    std::filesystem::path socket_;
};

} // namespace vantoro::journal
