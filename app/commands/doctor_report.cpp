// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/doctor_report.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <utility>
#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include "app/commands/json_line.h"
#include "l10n/texts/doctor_advice.h"
#include "l10n/texts/doctor_findings.h"
#include "l10n/texts/error_description.h"

namespace vantoro {

namespace {

using Finding = DoctorFinding;
using Advice = DoctorAdvice;
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
    Line(const BilingualText& which, Arguments arguments = {}) // implicit: most take no arguments
        : text(which), words(std::move(arguments)) {}

    BilingualText text;
    Arguments words;
};

/// Builds the report, finding by finding.
class Writer {
public:
    explicit Writer(AppLanguage language) : language_(language) {}

    std::string text(const Line& line) const { return line.text.in(language_, line.words); }

    std::string words(const std::error_code& reason) const {
        return systemWords(reason, language_);
    }

    void fine(const char* check, const Line& finding) {
        report_.push_back({.check = check, .text = text(finding), .advice = {}});
    }

    void problem(const char* check, const Line& finding, const Line& advice) {
        report_.push_back({.check = check, .text = text(finding), .advice = text(advice)});
    }

    void past(const char* check, const Line& finding) {
        report_.push_back({.check = check, .text = text(finding), .advice = {}, .isPast = true});
    }

    void check(const char* check, bool isFine, const Line& finding, const Line& problem,
               const Line& advice) {
        isFine ? fine(check, finding) : this->problem(check, problem, advice);
    }

    DoctorReport report() const { return report_; }

private:
    AppLanguage language_;
    DoctorReport report_;
};

void addMicrophones(Writer& writer, const capture::SoundSurvey& sound) {
    for (const auto& [device, isDefault, mixer] : sound.microphones) {
        const auto& name = device.name;
        const auto shown = isDefault ? writer.text({Finding::microphoneDefault, {name}}) : name;
        if (mixer.isMuted) {
            writer.problem("microphone", {Finding::microphoneMuted, {shown}},
                           {Advice::microphoneMuted, {name}});
        } else {
            writer.check("microphone", !mixer.isVolumeZero, {Finding::microphone, {shown}},
                         {Finding::microphoneAtZero, {shown}}, {Advice::microphoneAtZero, {name}});
        }
    }
    const bool hasDefault =
        std::ranges::any_of(sound.microphones, &capture::SurveyedMicrophone::isDefault);
    if (sound.microphones.empty()) {
        writer.problem("microphone", Finding::microphoneMissing, Advice::microphoneMissing);
    } else if (!hasDefault && sound.hasSessionManager) { // which sets the default
        writer.problem("microphone", Finding::defaultMicrophoneMissing, Advice::defaultMicrophone);
    }
}

void addSound(Writer& writer, const DoctorFindings& findings) {
    const auto& library = findings.soundLibraryVersion;
    if (!findings.sound) {
        writer.problem("sound-server", {Finding::soundServerUnreachable, {library}},
                       Advice::soundServer);
        return;
    }
    const auto& sound = *findings.sound;
    const bool isSandboxed = findings.microphone && findings.microphone->sandboxed;
    writer.fine("sound-server", {Finding::soundServer, {sound.serverVersion, library}});
    writer.check("session-manager", sound.hasSessionManager, Finding::sessionManager,
                 Finding::sessionManagerMissing, Advice::sessionManager);
    writer.check("system-audio", sound.mayCapture, Finding::systemAudioAllowed,
                 Finding::systemAudioRefused,
                 isSandboxed ? Advice::systemAudioSandbox : Advice::systemAudio);
    writer.check("outputs", sound.outputs > 0, {Finding::outputs, {std::to_string(sound.outputs)}},
                 Finding::outputsMissing, Advice::outputs);
    if (sound.playsCodedSound) {
        writer.problem("coded-sound", Finding::codedSound, Advice::codedSound);
    }
    addMicrophones(writer, sound);
}

/// Checks in the order of `microphoneAuthorization`, to name the cause that decides.
void addMicrophonePermission(Writer& writer, const std::optional<desktop::MicrophoneFacts>& facts) {
    using desktop::StoredPermission;
    if (!facts) {
        writer.problem("microphone-permission", Finding::permissionUnknown, Advice::desktopSilent);
    } else if (facts->disabledBySettings) {
        writer.problem("microphone-permission", Finding::permissionDisabledBySettings,
                       Advice::permissionSettings);
    } else if (facts->disabledByPortal) {
        writer.problem("microphone-permission", Finding::permissionDisabledByLockdown,
                       Advice::permissionSettings);
    } else if (!facts->sandboxed) {
        writer.fine("microphone-permission", Finding::permissionNotForbidden);
    } else {
        writer.check("microphone-permission", facts->stored != StoredPermission::refused,
                     facts->stored == StoredPermission::granted ? Finding::permissionGranted
                                                                : Finding::permissionUndecided,
                     Finding::permissionRefused, Advice::permissionRefused);
    }
}

/// A service that did not answer has no other advice.
void addService(Writer& writer, const char* check, desktop::Presence presence,
                const BilingualText& present, const BilingualText& absent,
                const BilingualText& absentAdvice, const BilingualText& unknown) {
    if (presence == desktop::Presence::unknown) {
        writer.problem(check, unknown, Advice::desktopSilent);
    } else {
        writer.check(check, presence == desktop::Presence::present, present, absent, absentAdvice);
    }
}

void addSleepDelay(Writer& writer, desktop::SleepDelay delay) {
    using desktop::SleepDelay;
    switch (delay) {
    case SleepDelay::granted:
        return writer.fine("sleep-delay", Finding::sleepDelay);
    case SleepDelay::refused:
        return writer.problem("sleep-delay", Finding::sleepDelayRefused, Advice::sleepDelayRefused);
    case SleepDelay::noLoginManager:
        return writer.problem("sleep-delay", Finding::loginManagerMissing, Advice::loginManager);
    case SleepDelay::unknown:
        return writer.problem("sleep-delay", Finding::loginManagerUnknown, Advice::desktopSilent);
    }
}

void addDesktop(Writer& writer, const desktop::DesktopSurvey& found) {
    if (found.sessionBus == desktop::Presence::absent) {
        writer.problem("session-bus", Finding::sessionBusMissing, Advice::sessionBusMissing);
    } else if (found.sessionBus == desktop::Presence::unknown) {
        writer.problem("session-bus", Finding::sessionBusSilent, Advice::desktopSilent);
    } else {
        addService(writer, "status-area", found.statusArea, Finding::statusArea,
                   Finding::statusAreaMissing, Advice::statusArea, Finding::statusAreaUnknown);
        addService(writer, "portal", found.portal, Finding::portal, Finding::portalMissing,
                   Advice::portal, Finding::portalUnknown);
    }
    addSleepDelay(writer, found.sleepDelay);
}

/// Nothing but the folder's own finding if its disk does not answer.
void addFolder(Writer& writer, const DoctorFindings& findings) {
    const auto path = findings.recordingFolder.string();
    if (!findings.folder) {
        writer.problem("folder", {Finding::folderSilent, {path}}, {Advice::folderSilent, {path}});
        return;
    }
    const auto& [exists, refusal, available] = *findings.folder;
    const auto shown = exists ? path : writer.text({Finding::folderToBeMade, {path}});
    const auto space = readableSize(available.value_or(0));
    if (refusal) {
        writer.problem("folder", {Finding::folderRefused, {path, writer.words(refusal)}},
                       {Advice::folderRefused, {path}});
    }
    if (available && *available < enoughSpace) {
        writer.problem("folder", {Finding::folderSpaceShort, {shown, space}},
                       {Advice::folderSpace, {path}});
    } else if (!refusal) {
        writer.fine("folder", available ? Line(Finding::folderSpace, {shown, space})
                                        : Line(Finding::folder, {shown}));
    }
    if (const auto& count = findings.interruptedRecordings) {
        writer.check("interrupted-recordings", *count == 0, Finding::interruptedNone,
                     {Finding::interruptedWaiting, {std::to_string(*count)}}, Advice::interrupted);
    } else {
        writer.problem("interrupted-recordings", Finding::interruptedUnknown, Advice::interrupted);
    }
}

std::string localTime(std::chrono::system_clock::time_point time) {
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local)};
}

void addFaults(Writer& writer, const std::vector<journal::Fault>& faults) {
    for (const auto& [time, message] : faults) {
        writer.past("earlier-fault", {Finding::earlierFault, {localTime(time), message}});
    }
}

} // namespace

DoctorReport doctorReport(const DoctorFindings& findings, AppLanguage language) {
    Writer writer(language);
    addSound(writer, findings);
    addMicrophonePermission(writer, findings.microphone);
    addDesktop(writer, findings.desktop);
    addFolder(writer, findings);
    addFaults(writer, findings.faults);
    return writer.report();
}

bool isAllWell(const DoctorReport& report) {
    return std::ranges::all_of(report, &std::string::empty, &DoctorEntry::advice);
}

std::string doctorText(const DoctorReport& report, AppLanguage language) {
    std::string findings;
    std::string advice;
    for (const auto& entry : report) {
        findings += (entry.isPast           ? "    "
                     : entry.advice.empty() ? "ok  "
                                            : "!   ") +
                    entry.text + "\n";
        // One cause may show in several findings.
        if (const auto line = "- " + entry.advice + "\n";
            !entry.advice.empty() && !("\n" + advice).contains("\n" + line)) {
            advice += line;
        }
    }
    const auto& conclusion = isAllWell(report) ? Finding::nothingIsWrong : Finding::whatToDo;
    return findings + "\n" + conclusion.in(language) + "\n" + advice;
}

std::string doctorJson(const DoctorReport& report) {
    QJsonArray findings;
    for (const auto& [check, text, advice, isPast] : report) {
        QJsonObject finding{{"check", QString::fromStdString(check)},
                            {"ok", advice.empty()},
                            {"past", isPast},
                            {"text", QString::fromStdString(text)}};
        if (!advice.empty()) {
            finding["advice"] = QString::fromStdString(advice);
        }
        findings.append(finding);
    }
    return jsonLine(QJsonDocument({{"ok", isAllWell(report)}, {"findings", findings}}));
}

} // namespace vantoro
