// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_interface.h"

#include <variant>

namespace vantoro::desktop {

namespace {

/// Calls `visit` with the name and the field of each property that changes.
template <class Status, class Visit>
void forEachProperty(Status& status, const Visit& visit) {
    visit("State", status.state);
    visit("StartedAt", status.startedAt);
    visit("ElapsedSeconds", status.elapsedSeconds);
    visit("SavingProgress", status.savingProgress);
    visit("SystemAudio", status.systemAudio.isOn);
    visit("SystemAudioLevel", status.systemAudio.level);
    visit("SystemAudioCondition", status.systemAudio.condition);
    visit("Microphone", status.microphone.isOn);
    visit("MicrophoneLevel", status.microphone.level);
    visit("MicrophoneCondition", status.microphone.condition);
    visit("MicrophoneID", status.microphoneID);
    visit("Folder", status.folder);
    visit("LastRecording", status.lastRecording);
    visit("Message", status.message);
}

} // namespace

BusProperties propertiesOf(const ControlStatus& status) {
    BusProperties properties{{"Version", controlVersion}};
    forEachProperty(status, [&](const char* name, const auto& value) { properties[name] = value; });
    return properties;
}

ControlStatus statusOf(const BusProperties& properties) {
    ControlStatus status;
    forEachProperty(status, [&]<class Value>(const char* name, Value& value) {
        const auto found = properties.find(name);
        const auto* const given =
            found == properties.end() ? nullptr : std::get_if<Value>(&found->second);
        value = given == nullptr ? value : *given;
    });
    return status;
}

} // namespace vantoro::desktop
