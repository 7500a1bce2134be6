// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/doctor_report.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "l10n/texts/doctor_texts.h"
#include "l10n/texts/system_words.h"

namespace vantoro {

namespace {

using Text = DoctorText;
using Arguments = std::vector<std::string>;

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;
constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30U;
/// Below this, no mix starts until the recording has ended.
constexpr std::uint64_t enoughSpace = gibibyte;

/// In the largest fitting unit, rounded down: "1.0 GiB" is at least that much.
std::string readableSize(std::uint64_t bytes) {
    if (bytes < gibibyte) {
        return std::to_string(bytes / mebibyte) + " MiB";
    }
    const auto tenths = bytes / (gibibyte / 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GiB";
}

/// Builds the report, finding by finding.
class Writer {
public:
    explicit Writer(AppLanguage language) : language_(language) {}

    std::string text(DoctorText text, const Arguments& arguments = {}) const {
        return doctorText(text, language_, arguments);
    }

    std::string words(const std::error_code& reason) const {
        return systemWords(reason, language_);
    }

    void fine(DoctorText finding, const Arguments& arguments = {}) {
        lines_ += "ok  " + text(finding, arguments) + "\n";
    }

    void problem(const std::string& finding, const std::string& advice) {
        lines_ += "!   " + finding + "\n";
        // One cause may show in several findings.
        if (std::ranges::find(advice_, advice) == advice_.end()) {
            advice_.push_back(advice);
        }
    }

    void problem(DoctorText finding, DoctorText advice) { problem(text(finding), text(advice)); }

    DoctorReport report() const {
        if (advice_.empty()) {
            return {.text = lines_ + "\n" + text(Text::nothingIsWrong) + "\n", .isAllWell = true};
        }
        auto whole = lines_ + "\n" + text(Text::whatToDo) + "\n";
        for (const auto& advice : advice_) {
            whole += "- " + advice + "\n";
        }
        return {.text = whole, .isAllWell = false};
    }

private:
    AppLanguage language_;
    std::string lines_;
    Arguments advice_; ///< without duplicates
};

void addMicrophone(Writer& writer, const capture::SurveyedMicrophone& found) {
    const auto& name = found.device.name;
    const auto shown = found.isDefault ? writer.text(Text::microphoneDefault, {name}) : name;
    if (found.mixer.isMuted) {
        writer.problem(writer.text(Text::microphoneMuted, {shown}),
                       writer.text(Text::microphoneMutedAdvice, {name}));
    } else if (found.mixer.isVolumeZero) {
        writer.problem(writer.text(Text::microphoneAtZero, {shown}),
                       writer.text(Text::microphoneAtZeroAdvice, {name}));
    } else {
        writer.fine(Text::microphone, {shown});
    }
}

void addMicrophones(Writer& writer, const capture::SoundSurvey& sound) {
    for (const auto& found : sound.microphones) {
        addMicrophone(writer, found);
    }
    const bool hasDefault =
        std::ranges::any_of(sound.microphones, &capture::SurveyedMicrophone::isDefault);
    if (sound.microphones.empty()) {
        writer.problem(Text::microphoneMissing, Text::microphoneMissingAdvice);
    } else if (!hasDefault && sound.hasSessionManager) { // which sets the default
        writer.problem(Text::defaultMicrophoneMissing, Text::defaultMicrophoneAdvice);
    }
}

void addSound(Writer& writer, const DoctorFindings& findings) {
    if (!findings.sound) {
        writer.problem(writer.text(Text::soundServerUnreachable, {findings.soundLibraryVersion}),
                       writer.text(Text::soundServerAdvice));
        return;
    }
    const auto& sound = *findings.sound;
    writer.fine(Text::soundServer, {sound.serverVersion, findings.soundLibraryVersion});
    if (sound.hasSessionManager) {
        writer.fine(Text::sessionManager);
    } else {
        writer.problem(Text::sessionManagerMissing, Text::sessionManagerAdvice);
    }
    if (sound.mayCapture) {
        writer.fine(Text::systemAudioAllowed);
    } else {
        const bool isSandboxed = findings.microphone && findings.microphone->sandboxed;
        writer.problem(Text::systemAudioRefused,
                       isSandboxed ? Text::systemAudioSandboxAdvice : Text::systemAudioAdvice);
    }
    if (sound.outputs > 0) {
        writer.fine(Text::outputs, {std::to_string(sound.outputs)});
    } else {
        writer.problem(Text::outputsMissing, Text::outputsAdvice);
    }
    if (sound.playsCodedSound) {
        writer.problem(Text::codedSound, Text::codedSoundAdvice);
    }
    addMicrophones(writer, sound);
}

/// Checks in the order of `microphoneAuthorization`, to name the cause that decides.
void addMicrophonePermission(Writer& writer, const std::optional<desktop::MicrophoneFacts>& facts) {
    using desktop::StoredPermission;
    if (!facts) {
        writer.problem(Text::permissionUnknown, Text::desktopSilentAdvice);
    } else if (facts->disabledBySettings) {
        writer.problem(Text::permissionDisabledBySettings, Text::permissionSettingsAdvice);
    } else if (facts->disabledByPortal) {
        writer.problem(Text::permissionDisabledByLockdown, Text::permissionSettingsAdvice);
    } else if (!facts->sandboxed) {
        writer.fine(Text::permissionNotForbidden);
    } else if (facts->stored == StoredPermission::refused) {
        writer.problem(Text::permissionRefused, Text::permissionRefusedAdvice);
    } else {
        writer.fine(facts->stored == StoredPermission::granted ? Text::permissionGranted
                                                               : Text::permissionUndecided);
    }
}

/// The texts of a service, by its presence.
struct PresenceTexts {
    DoctorText present;
    DoctorText absent;
    DoctorText absentAdvice;
    DoctorText unknown;
};

void addPresence(Writer& writer, desktop::Presence presence, const PresenceTexts& texts) {
    using desktop::Presence;
    switch (presence) {
    case Presence::present:
        return writer.fine(texts.present);
    case Presence::absent:
        return writer.problem(texts.absent, texts.absentAdvice);
    case Presence::unknown:
        return writer.problem(texts.unknown, Text::desktopSilentAdvice);
    }
}

void addSleepDelay(Writer& writer, desktop::SleepDelay delay) {
    using desktop::SleepDelay;
    switch (delay) {
    case SleepDelay::granted:
        return writer.fine(Text::sleepDelay);
    case SleepDelay::refused:
        return writer.problem(Text::sleepDelayRefused, Text::sleepDelayRefusedAdvice);
    case SleepDelay::noLoginManager:
        return writer.problem(Text::loginManagerMissing, Text::loginManagerAdvice);
    case SleepDelay::unknown:
        return writer.problem(Text::loginManagerUnknown, Text::desktopSilentAdvice);
    }
}

void addDesktop(Writer& writer, const desktop::DesktopSurvey& found) {
    using desktop::Presence;
    if (found.sessionBus == Presence::absent) {
        writer.problem(Text::sessionBusMissing, Text::sessionBusMissingAdvice);
    } else if (found.sessionBus == Presence::unknown) {
        writer.problem(Text::sessionBusSilent, Text::desktopSilentAdvice);
    } else {
        addPresence(writer, found.statusArea,
                    {Text::statusArea, Text::statusAreaMissing, Text::statusAreaAdvice,
                     Text::statusAreaUnknown});
        addPresence(writer, found.portal,
                    {Text::portal, Text::portalMissing, Text::portalAdvice, Text::portalUnknown});
    }
    addSleepDelay(writer, found.sleepDelay);
}

void addFolder(Writer& writer, const DoctorFindings& findings) {
    const auto path = findings.recordingFolder.string();
    if (!findings.folder) {
        writer.problem(writer.text(Text::folderSilent, {path}),
                       writer.text(Text::folderSilentAdvice, {path}));
        return;
    }
    const auto& [exists, refusal, available] = *findings.folder;
    const auto shown = exists ? path : writer.text(Text::folderToBeMade, {path});
    if (refusal) {
        writer.problem(writer.text(Text::folderRefused, {path, writer.words(refusal)}),
                       writer.text(Text::folderRefusedAdvice, {path}));
    }
    if (available && *available < enoughSpace) {
        writer.problem(writer.text(Text::folderSpaceShort, {shown, readableSize(*available)}),
                       writer.text(Text::folderSpaceAdvice, {path}));
    } else if (!refusal && available) {
        writer.fine(Text::folderSpace, {shown, readableSize(*available)});
    } else if (!refusal) {
        writer.fine(Text::folder, {shown});
    }
}

void addInterrupted(Writer& writer, const DoctorFindings& findings) {
    const auto& count = findings.interruptedRecordings;
    if (!findings.folder) {
        return; // the folder does not answer
    }
    if (!count) {
        writer.problem(Text::interruptedUnknown, Text::interruptedAdvice);
    } else if (*count > 0) {
        writer.problem(writer.text(Text::interruptedWaiting, {std::to_string(*count)}),
                       writer.text(Text::interruptedAdvice));
    } else {
        writer.fine(Text::interruptedNone);
    }
}

} // namespace

DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language) {
    Writer writer(language);
    addSound(writer, findings);
    addMicrophonePermission(writer, findings.microphone);
    addDesktop(writer, findings.desktop);
    addFolder(writer, findings);
    addInterrupted(writer, findings);
    return writer.report();
}

} // namespace vantoro
