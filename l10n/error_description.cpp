// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/error_description.h"

#include "l10n/l10n.h"

namespace vantoro {

std::string errorDescription(const RecordingError& error, AppLanguage language) {
    using enum RecordingError::Case;
    using Key = L10n::Key;
    switch (error.which()) {
    case writerFailed:
        return (language == AppLanguage::chinese ? "录音失败：" : "Recording failed: ") +
               error.message();
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
        return other.what();
    }
}

} // namespace vantoro
