// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/journal/recent_faults.h"

#include <cstdint>
#include <memory>
#include <string_view>

#include <systemd/sd-journal.h>
#include <unistd.h>

#include "engine/ports/recording_log.h"
#include "platform/journal/journal.h"

namespace vantoro::journal {

namespace {

struct CloseJournal {
    void operator()(sd_journal* journal) const { sd_journal_close(journal); }
};

using OpenJournal = std::unique_ptr<sd_journal, CloseJournal>;

OpenJournal openJournal(const std::filesystem::path& folder) {
    sd_journal* journal = nullptr;
    const int opened = folder.empty() ? sd_journal_open(&journal, SD_JOURNAL_LOCAL_ONLY)
                                      : sd_journal_open_directory(&journal, folder.c_str(), 0);
    return OpenJournal(opened < 0 ? nullptr : journal);
}

bool select(sd_journal* journal) {
    using enum RecordingLog::Level;
    // Of matches for one field, any counts; of those for several, all.
    for (const auto& match :
         {std::string("SYSLOG_IDENTIFIER=") + identifier, "_UID=" + std::to_string(::getuid()),
          "PRIORITY=" + std::to_string(static_cast<int>(error)),
          "PRIORITY=" + std::to_string(static_cast<int>(warning))}) {
        if (sd_journal_add_match(journal, match.data(), match.size()) < 0) {
            return false;
        }
    }
    return sd_journal_seek_tail(journal) >= 0;
}

std::string messageIn(sd_journal* journal) {
    constexpr std::string_view name = "MESSAGE=";
    const void* data = nullptr;
    std::size_t length = 0;
    if (sd_journal_get_data(journal, "MESSAGE", &data, &length) < 0 || length < name.size()) {
        return {};
    }
    return std::string(static_cast<const char*>(data), length).substr(name.size());
}

} // namespace

std::vector<Fault> recentFaults(std::size_t count, std::chrono::system_clock::time_point since,
                                const std::filesystem::path& folder) {
    std::vector<Fault> faults;
    const auto journal = openJournal(folder);
    if (!journal || !select(journal.get())) {
        return faults;
    }
    while (faults.size() < count && sd_journal_previous(journal.get()) > 0) {
        std::uint64_t microseconds = 0;
        if (sd_journal_get_realtime_usec(journal.get(), &microseconds) < 0) {
            break;
        }
        const std::chrono::system_clock::time_point time{std::chrono::microseconds(microseconds)};
        if (time < since) {
            break;
        }
        faults.push_back({.time = time, .message = messageIn(journal.get())});
    }
    return faults;
}

} // namespace vantoro::journal
