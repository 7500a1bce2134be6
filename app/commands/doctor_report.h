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
#include "platform/desktop/permission/microphone_access.h"

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
};

struct DoctorReport {
    std::string text; ///< complete lines
    bool isAllWell = false;
};

/// One line per finding, prefixed "ok  " or "!   ", then advice on each problem.
DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language);

} // namespace vantoro
