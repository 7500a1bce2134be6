// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/error_description.h"

#include <string_view>

#include "l10n/l10n.h"
#include "l10n/texts/failure_texts.h"
#include "l10n/texts/system_words.h"

namespace vantoro {

namespace {

std::string inChinese(const std::exception& error) {
    if (const auto* const failure = dynamic_cast<const Failure*>(&error)) {
        return chineseText(*failure);
    }
    if (const auto* const failure = dynamic_cast<const FileFailure*>(&error)) {
        return chineseText(*failure);
    }
    if (const auto* const failure = dynamic_cast<const std::system_error*>(&error)) {
        return systemWords(failure->code(), AppLanguage::chinese) + "。";
    }
    return std::string("意外错误：") + error.what();
}

/// `what()`, but for what only a developer understands.
std::string inEnglish(const std::exception& error) {
    const auto* const failure = dynamic_cast<const Failure*>(&error);
    return failure != nullptr && failure->code() == FailureCode::recordingDamaged
               ? "The recording file is damaged."
               : error.what();
}

} // namespace

std::string errorDescription(const RecordingError& error, AppLanguage language) {
    using enum RecordingError::Case;
    using Key = L10n::Key;
    switch (error.which()) {
    case writerFailed:
        return (language == AppLanguage::chinese ? "录音失败：" : "Recording failed: ") +
               (error.cause() ? errorDescription(error.cause(), language) : error.message());
    case noAudioSource:
        return L10n::text(Key::noAudioSource, language);
    case screenPermissionDenied:
        return L10n::text(Key::screenPermissionDenied, language);
    case microphonePermissionDenied:
        return L10n::text(Key::microphonePermissionDenied, language);
    case noDisplayAvailable:
        return L10n::text(Key::noDisplayAvailable, language);
    case writerSetupFailed:
        return L10n::text(Key::writerSetupFailed, language);
    case noAudioCaptured:
        return L10n::text(Key::noAudioCaptured, language);
    case exportFailed:
        return L10n::text(Key::exportFailed, language);
    case diskTooFull:
        return L10n::text(Key::diskTooFull, language);
    }
    return {};
}

std::string errorDescription(const std::exception_ptr& error, AppLanguage language) {
    try {
        std::rethrow_exception(error);
    } catch (const RecordingError& recordingError) {
        return errorDescription(recordingError, language);
    } catch (const std::exception& other) {
        return language == AppLanguage::english ? inEnglish(other) : inChinese(other);
    }
}

std::string errorReason(const std::exception_ptr& error, AppLanguage language) {
    auto text = errorDescription(error, language);
    for (const std::string_view fullStop : {".", "。"}) {
        if (text.ends_with(fullStop)) {
            text.resize(text.size() - fullStop.size());
        }
    }
    return text;
}

} // namespace vantoro
