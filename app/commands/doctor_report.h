// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/commands/folder_check.h"
#include "capture/graph/sound_survey.h"
#include "l10n/app_language.h"
#include "platform/desktop/desktop_survey.h"
#include "platform/desktop/permission/microphone_access.h"
#include "platform/journal/recent_faults.h"

namespace vantoro {

/// The state of this machine, as far as recording depends on it. An absent value means that no
/// answer came in time.
struct DoctorFindings {
    std::string soundLibraryVersion;
    std::optional<capture::SoundSurvey> sound; ///< absent also without a sound server
    desktop::DesktopSurvey desktop;
    std::optional<desktop::MicrophoneFacts> microphone; ///< what its permission depends on
    std::filesystem::path recordingFolder;
    std::optional<FolderCheck> folder;
    std::optional<std::size_t> interruptedRecordings; ///< that are not salvaged yet
    std::vector<journal::Fault> faults;               ///< of earlier recordings, newest first
};

/// One thing that was checked, in the user's language.
struct DoctorEntry {
    std::string check;   ///< its name for programs, such as "microphone"
    std::string text;    ///< one line, without its end
    std::string advice;  ///< empty if nothing is wrong
    bool isPast = false; ///< what went wrong earlier, for information
};

using DoctorReport = std::vector<DoctorEntry>;

DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language);

bool isAllWell(const DoctorReport& report);

/// One line per finding, prefixed "ok  ", "!   " or, if it is past, "    ", then advice on each
/// problem.
std::string doctorText(const DoctorReport& report, AppLanguage language);

/// The same as a JSON object, one line.
std::string doctorJson(const DoctorReport& report);

} // namespace vantoro
