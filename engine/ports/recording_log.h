// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

/// For administrators and developers: what happens to recordings, in English. Holds nothing
/// private: no folder, no device's name.
class RecordingLog {
public:
    /// The numbers are those of syslog.
    enum class Level : std::uint8_t { error = 3, warning = 4, notice = 5, information = 6 };

    RecordingLog() = default;
    RecordingLog(const RecordingLog&) = delete;
    RecordingLog& operator=(const RecordingLog&) = delete;
    virtual ~RecordingLog() = default;

    /// One line about a recording, which `recording` names; empty if it is about none. Any thread
    /// but the real-time one; never waits, never throws.
    virtual void write(Level level, const std::string& message,
                       const std::string& recording) noexcept = 0;
};

} // namespace vantoro
