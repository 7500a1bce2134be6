// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/status_scene.h"

#include "control/elapsed_time.h"
#include "control/transitions.h"
#include "l10n/texts/desktop_texts.h"

namespace vantoro {

StatusMenu statusMenu(const StatusScene& scene, const L10n& texts) {
    StatusMenuRow recording{.command = StatusAreaCommand::startRecording,
                            .label = texts.text(L10n::Key::startRecording),
                            .isEnabled = scene.canStart};
    if (isUnderWay(scene.state)) {
        recording = {.command = StatusAreaCommand::stopRecording,
                     .label = texts.text(L10n::Key::stopRecording)};
    }
    return {{.command = StatusAreaCommand::showWindow,
             .label = DesktopText::showWindow.in(texts.language())},
            recording,
            {.command = StatusAreaCommand::quit, .label = texts.quit(), .startsGroup = true}};
}

std::string toolTipDetail(const StatusScene& scene, const L10n& texts) {
    if (scene.state != RecordingState::Case::recording) {
        return {};
    }
    return DesktopText::recordingFor.in(texts.language(),
                                        {formattedElapsedTime(scene.elapsedSeconds)});
}

} // namespace vantoro
