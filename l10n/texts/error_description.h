// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <string>
#include <system_error>

#include "engine/failure.h"
#include "engine/recording_types.h"
#include "l10n/app_language.h"

namespace vantoro {

// What the user reads of a failure; composed anew at each call. Any thread.

std::string errorDescription(const RecordingError& error, AppLanguage language);

/// A sentence for any error. The pointer must not be null. In Chinese, an error that has no words
/// of its own is announced as unexpected before its `what()`.
std::string errorDescription(const std::exception_ptr& error, AppLanguage language);

/// The same to be put into another sentence: without a full stop at its end.
std::string errorReason(const std::exception_ptr& error, AppLanguage language);

/// Why the system refused something, without a full stop: in English the system's own words; in
/// Chinese ours for what a file system or a disk may answer, and the system's for all else.
std::string systemWords(const std::error_code& code, AppLanguage language);

} // namespace vantoro
