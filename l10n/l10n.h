// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/recording_types.h"
#include "l10n/app_language.h"
#include "l10n/preferences.h"

namespace vantoro {

/// Every text that the user sees, UTF-8, in the language that is stored at the moment of asking.
/// The system's language plays no part. Any thread.
class L10n {
public:
    enum class Key : std::uint8_t {
        language,
        checkForUpdates,
        currentVersion,
        alreadyLatest,
        updateCheckFailed,
        downloadUpdate,
        audioInputLevels,
        refreshAudioDevices,
        ok,
        close,
        ready,
        preparing,
        recording,
        saving,
        saved,
        needsAttention,
        m4aAudio,
        checkingPermissions,
        capturingAudio,
        mixingTracks,
        recordingReady,
        audioSources,
        systemAudio,
        systemMeter,
        meetingAndAppSound,
        microphone,
        microphoneMeter,
        yourVoice,
        input,
        screenAndSystemAudio,
        allowed,
        required,
        settings,
        recordingPanel,
        systemLevel,
        micLevel,
        change,
        openRecordingFolder,
        recordingSaved,
        playRecording,
        showInFinder,
        stopRecording,
        startRecording,
        chooseRecordingFolder,
        choose,
        sleepSaved,
        captureInterruptedSaved,
        diskNearlyFullSaved,
        recoveredOne,
        recoveredMany,
        checkpointKept,
        noAudioSource,
        screenPermissionDenied,
        microphonePermissionDenied,
        microphonePermissionOnStart,
        noDisplayAvailable,
        writerSetupFailed,
        recordingFailed,
        noAudioCaptured,
        exportFailed,
        diskTooFull,
    };
    using Table = std::unordered_map<Key, std::string_view>;

    /// `preferences` must outlive it.
    explicit L10n(const Preferences& preferences) : preferences_(preferences) {}

    /// English exactly when that is what is stored; Chinese otherwise, also before any choice.
    AppLanguage language() const;

    /// Empty for the keys without a row: `recoveredOne`, `recoveredMany`, `checkpointKept` and
    /// `recordingFailed` stand for what the functions below and `errorDescription` compose.
    std::string text(Key key) const;
    static std::string text(Key key, AppLanguage language);

    /// That so many interrupted recordings were saved.
    std::string recovered(std::size_t count) const;

    /// That so much is silent, since the program stood still.
    std::string soundNotTakenInTime(SoundLoss::Duration length) const;

    /// That so much could not be written, and why; null where the disk was only too slow.
    std::string soundNotWritten(SoundLoss::Duration length, const std::exception_ptr& reason) const;

    /// That all else is saved: a sentence to go with those two.
    std::string restSaved() const;

    /// That a recording which was interrupted could not be saved, why, and that it stays.
    std::string notRecovered(const std::filesystem::path& recording,
                             const std::exception_ptr& reason) const;

    /// That the disk has room for so many minutes of recording, less than one included.
    std::string roomLeft(std::int64_t minutes) const;

    /// That parts of so many recordings could not be read, and where they were kept: a sentence to
    /// go with that of `recovered`. Empty where there are none.
    std::string originalsKept(const std::vector<std::filesystem::path>& originals) const;

    /// The same of one recording, in a sentence of its own, with the file's whole path.
    std::string originalKept(const std::filesystem::path& original) const;

    /// That there is a newer version than this one.
    std::string newVersionAvailable(std::string_view version) const;

    /// Which version this one is.
    std::string runningVersion(std::string_view version) const;

    /// What there is to say of a source in this condition, in one word or two, and in a sentence
    /// without a full stop; empty where it delivers.
    std::string conditionInShort(SourceCondition condition) const;
    std::string condition(SourceCondition condition) const;

    /// One text of several; the empty ones are left out. Nothing follows a full-width stop but the
    /// next sentence, and a space any other end.
    static std::string sentences(std::initializer_list<std::string> texts);

    /// The command that ends the program.
    std::string quit() const;

    /// A sentence to append to a failure's: it begins with a space.
    std::string checkpointKept() const;

    /// Both hold the same keys.
    static const Table& chinese();
    static const Table& english();

private:
    const Preferences& preferences_;
};

/// A key's text in the preferred table, else in the other, else the empty one.
std::string_view lookUp(L10n::Key key, const L10n::Table& preferred, const L10n::Table& other);

} // namespace vantoro
