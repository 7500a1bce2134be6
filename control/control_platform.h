// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>

#include "control/audio_level_store.h"
#include "control/ports/audio_devices.h"
#include "control/ports/folder_dialog.h"
#include "control/ports/opener.h"
#include "control/ports/power_management.h"
#include "control/ports/scheduler.h"
#include "engine/ports/permissions.h"
#include "l10n/preferences.h"

namespace vantoro {

/// The view model's dependencies. All must outlive the view model; the scheduler must finish its
/// work before the others are destroyed.
struct ControlPlatform {
    Scheduler& scheduler;
    PowerManagement& power;
    AudioDevices& audioDevices;
    MicrophoneAccess& microphoneAccess;
    Opener& opener;
    FolderDialog& folderDialog;
    Preferences& preferences;
    AudioLevelStore& levels;
    std::filesystem::path defaultRecordingFolder;
    /// For a watchdog: called when a stop or a salvage makes progress, on its thread; may be empty.
    std::function<void()> recorderProgressed = {};
};

} // namespace vantoro
