// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantoro {

/// The settings that are kept between runs.
enum class Preference : std::uint8_t {
    outputDirectory, ///< the path of the recording folder
    appLanguage,     ///< the `rawValue` of an `AppLanguage`
    windowSize,      ///< the user's, as `ui/window/window_size.h` writes it
    keepTracks,      ///< "true" if each source is also kept in a file of its own
};

/// The user's preferences. Never fails: a value that cannot be stored lasts for this run only.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// The stored text; none if it is missing or unreadable. Any thread.
    virtual std::optional<std::string> get(Preference preference) const = 0;

    /// From now on `get` returns this text, even if it cannot be stored. Main thread.
    virtual void set(Preference preference, const std::string& value) = 0;
};

} // namespace vantoro
