// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantoro {

/// All that is kept from one run of the program to the next.
enum class Preference : std::uint8_t {
    outputDirectory, ///< the recording folder's path
    appLanguage,     ///< the `rawValue` of an `AppLanguage`
};

/// The user's preferences. Nothing here fails: what cannot be kept is forgotten with the program.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// The stored text; none when nothing, or nothing readable, is stored. Any thread.
    virtual std::optional<std::string> get(Preference preference) const = 0;

    /// From here on `get` gives this text, in this run even if it cannot be stored. Main thread.
    virtual void set(Preference preference, const std::string& value) = 0;
};

} // namespace vantoro
