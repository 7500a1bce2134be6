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
#include "l10n/text_key.h"
#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// Every text that the user sees, UTF-8, in the language stored at the moment of the call; the
/// system's language is ignored. Any thread.
class L10n {
public:
    using Key = TextKey;
    using Table = std::unordered_map<Key, std::string_view>;

    /// `preferences` must outlive it.
    explicit L10n(const Preferences& preferences) : preferences_(preferences) {}

    /// English if that is stored, else Chinese.
    AppLanguage language() const;

    /// Empty for `recoveredOne`, `recoveredMany`, `checkpointKept` and `recordingFailed`: the
    /// functions below and `errorDescription` compose those.
    std::string text(Key key) const;
    static std::string text(Key key, AppLanguage language);

    /// How many interrupted recordings were salvaged.
    std::string recovered(std::size_t count) const;

    /// How much is silent because the program stalled.
    std::string soundNotTakenInTime(SoundLoss::Duration length) const;

    /// How much could not be written, and why; a null reason means that the disk was too slow.
    std::string soundNotWritten(SoundLoss::Duration length, const std::exception_ptr& reason) const;

    /// Says that the rest is saved; to append to the two texts above.
    std::string restSaved() const;

    /// Says that an interrupted recording could not be salvaged, why, and that its file stays.
    std::string notRecovered(const std::filesystem::path& recording,
                             const std::exception_ptr& reason) const;

    /// The title of a mark without a text.
    std::string mark(int number) const;

    /// How many minutes of recording fit on the disk; may be less than one.
    std::string roomLeft(std::int64_t minutes) const;

    /// How many recordings were damaged, and where the originals are; to append to `recovered`.
    /// Empty for an empty list.
    std::string originalsKept(const std::vector<std::filesystem::path>& originals) const;

    /// As above for one recording, as a separate sentence with the full path.
    std::string originalKept(const std::filesystem::path& original) const;

    /// Says that the sources' own files could not be saved, why, and which file has all of them.
    std::string tracksNotKept(const TracksNotKept& failure) const;

    /// Says that a newer version is available.
    std::string newVersionAvailable(std::string_view version) const;

    /// Says which version is running.
    std::string runningVersion(std::string_view version) const;

    /// A source's condition: in one or two words, and as a sentence without a full stop. Both empty
    /// if the source delivers.
    std::string conditionInShort(SourceCondition condition) const;
    std::string condition(SourceCondition condition) const;

    /// Joins sentences; skips empty ones. A space separates them, except after a full-width stop.
    static std::string sentences(std::initializer_list<std::string> texts);

    /// Stands in the list of microphones if there is none.
    std::string noMicrophone() const;

    /// The label of the quit command.
    std::string quit() const;

    /// Says that the recorded data was kept; to append to an error's text, and begins with a space.
    std::string checkpointKept() const;

    /// Both tables have the same keys.
    static const Table& chinese();
    static const Table& english();

private:
    std::string say(const BilingualText& text,
                    const std::vector<std::string>& arguments = {}) const;

    const Preferences& preferences_;
};

} // namespace vantoro
