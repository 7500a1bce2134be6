// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "app/commands/folder_check.h"
#include "capture/graph/sound_survey.h"
#include "l10n/app_language.h"
#include "platform/desktop/desktop_survey.h"
#include "platform/desktop/permission/microphone_policy.h"

namespace vantoro {

/// What the recorder finds on this machine. Where an optional one is absent, no answer came in
/// time.
struct DoctorFindings {
    std::string soundLibraryVersion;
    std::optional<capture::SoundSurvey> sound; ///< absent also where there is no sound server
    desktop::DesktopSurvey desktop;
    std::optional<desktop::MicrophoneFacts> microphone; ///< what decides of its permission
    std::filesystem::path recordingFolder;
    std::optional<FolderCheck> folder;
    std::optional<std::size_t> interruptedRecordings; ///< that wait to be finished
};

struct DoctorReport {
    std::string text; ///< whole lines
    bool isAllWell = false;
};

/// A line for each finding, "ok  " or "!   " before it, then what to do about each problem.
DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language);

} // namespace vantoro
