// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <span>
#include <string_view>

#include "l10n/app_language.h"

namespace vantoro {

/// An option of a command. All of this is produced from app/commands/options.toml.
struct CommandOption {
    const char* command;
    const char* name; ///< without hyphens
    bool takesValue;
};

/// The options of all commands, without --help and --version.
std::span<const CommandOption> commandOptions();

/// What `--help` prints: all commands and options, UTF-8.
std::string_view helpText(AppLanguage language);

} // namespace vantoro
