// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <span>
#include <string_view>

#include "l10n/app_language.h"

namespace vantoro {

/// An option of a command. Generated from app/commands/options.toml, as all data of this header.
struct CommandOption {
    const char* command;
    const char* name; ///< without hyphens
    bool takesValue;
};

/// The options of all commands, except --help and --version.
std::span<const CommandOption> commandOptions();

/// The output of `--help`: all commands and options, UTF-8.
std::string_view helpText(AppLanguage language);

} // namespace vantoro
