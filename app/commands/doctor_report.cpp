// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/doctor_report.h"

#include <algorithm>
#include <cstdint>
#include <utility>
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

/// A text, and what it is filled with.
struct Line {
    Line(DoctorText which, Arguments arguments = {}) // implicit: most take no arguments
        : text(which), words(std::move(arguments)) {}

    DoctorText text;
    Arguments words;
};

/// Builds the report, finding by finding.
class Writer {
public:
    explicit Writer(AppLanguage language) : language_(language) {}

    std::string text(const Line& line) const {
        return doctorText(line.text, language_, line.words);
    }

    std::string words(const std::error_code& reason) const {
        return systemWords(reason, language_);
    }

    void fine(const Line& finding) { lines_ += "ok  " + text(finding) + "\n"; }

    void problem(const Line& finding, const Line& advice) {
        lines_ += "!   " + text(finding) + "\n";
        // One cause may show in several findings.
        if (const auto line = "- " + text(advice) + "\n"; !("\n" + advice_).contains("\n" + line)) {
            advice_ += line;
        }
    }

    void check(bool isFine, const Line& finding, const Line& problem, const Line& advice) {
        isFine ? fine(finding) : this->problem(problem, advice);
    }

    DoctorReport report() const {
        const bool isAllWell = advice_.empty();
        const auto conclusion = text(isAllWell ? Text::nothingIsWrong : Text::whatToDo);
        return {.text = lines_ + "\n" + conclusion + "\n" + advice_, .isAllWell = isAllWell};
    }

private:
    AppLanguage language_;
    std::string lines_;
    std::string advice_;
};

void addMicrophones(Writer& writer, const capture::SoundSurvey& sound) {
    for (const auto& [device, isDefault, mixer] : sound.microphones) {
        const auto& name = device.name;
        const auto shown = isDefault ? writer.text({Text::microphoneDefault, {name}}) : name;
        if (mixer.isMuted) {
            writer.problem({Text::microphoneMuted, {shown}}, {Text::microphoneMutedAdvice, {name}});
        } else {
            writer.check(!mixer.isVolumeZero, {Text::microphone, {shown}},
                         {Text::microphoneAtZero, {shown}}, {Text::microphoneAtZeroAdvice, {name}});
        }
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
    const auto& library = findings.soundLibraryVersion;
    if (!findings.sound) {
        writer.problem({Text::soundServerUnreachable, {library}}, Text::soundServerAdvice);
        return;
    }
    const auto& sound = *findings.sound;
    const bool isSandboxed = findings.microphone && findings.microphone->sandboxed;
    writer.fine({Text::soundServer, {sound.serverVersion, library}});
    writer.check(sound.hasSessionManager, Text::sessionManager, Text::sessionManagerMissing,
                 Text::sessionManagerAdvice);
    writer.check(sound.mayCapture, Text::systemAudioAllowed, Text::systemAudioRefused,
                 isSandboxed ? Text::systemAudioSandboxAdvice : Text::systemAudioAdvice);
    writer.check(sound.outputs > 0, {Text::outputs, {std::to_string(sound.outputs)}},
                 Text::outputsMissing, Text::outputsAdvice);
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
    } else {
        writer.check(facts->stored != StoredPermission::refused,
                     facts->stored == StoredPermission::granted ? Text::permissionGranted
                                                                : Text::permissionUndecided,
                     Text::permissionRefused, Text::permissionRefusedAdvice);
    }
}

/// A service that did not answer has no other advice.
void addService(Writer& writer, desktop::Presence presence, DoctorText present, DoctorText absent,
                DoctorText absentAdvice, DoctorText unknown) {
    if (presence == desktop::Presence::unknown) {
        writer.problem(unknown, Text::desktopSilentAdvice);
    } else {
        writer.check(presence == desktop::Presence::present, present, absent, absentAdvice);
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
    if (found.sessionBus == desktop::Presence::absent) {
        writer.problem(Text::sessionBusMissing, Text::sessionBusMissingAdvice);
    } else if (found.sessionBus == desktop::Presence::unknown) {
        writer.problem(Text::sessionBusSilent, Text::desktopSilentAdvice);
    } else {
        addService(writer, found.statusArea, Text::statusArea, Text::statusAreaMissing,
                   Text::statusAreaAdvice, Text::statusAreaUnknown);
        addService(writer, found.portal, Text::portal, Text::portalMissing, Text::portalAdvice,
                   Text::portalUnknown);
    }
    addSleepDelay(writer, found.sleepDelay);
}

/// Nothing but the folder's own finding if its disk does not answer.
void addFolder(Writer& writer, const DoctorFindings& findings) {
    const auto path = findings.recordingFolder.string();
    if (!findings.folder) {
        writer.problem({Text::folderSilent, {path}}, {Text::folderSilentAdvice, {path}});
        return;
    }
    const auto& [exists, refusal, available] = *findings.folder;
    const auto shown = exists ? path : writer.text({Text::folderToBeMade, {path}});
    const auto space = readableSize(available.value_or(0));
    if (refusal) {
        writer.problem({Text::folderRefused, {path, writer.words(refusal)}},
                       {Text::folderRefusedAdvice, {path}});
    }
    if (available && *available < enoughSpace) {
        writer.problem({Text::folderSpaceShort, {shown, space}}, {Text::folderSpaceAdvice, {path}});
    } else if (!refusal) {
        writer.fine(available ? Line(Text::folderSpace, {shown, space})
                              : Line(Text::folder, {shown}));
    }
    if (const auto& count = findings.interruptedRecordings) {
        writer.check(*count == 0, Text::interruptedNone,
                     {Text::interruptedWaiting, {std::to_string(*count)}}, Text::interruptedAdvice);
    } else {
        writer.problem(Text::interruptedUnknown, Text::interruptedAdvice);
    }
}

} // namespace

DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language) {
    Writer writer(language);
    addSound(writer, findings);
    addMicrophonePermission(writer, findings.microphone);
    addDesktop(writer, findings.desktop);
    addFolder(writer, findings);
    return writer.report();
}

} // namespace vantoro
