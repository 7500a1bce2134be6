// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "l10n/app_language.h"

namespace vantoro {

struct FolderQuestion {
    std::string title;
    std::string prompt;              ///< the label of the confirm button
    std::filesystem::path directory; ///< where the dialog opens; may be missing
    AppLanguage language;            ///< of everything else that the dialog says
};

/// Lets the user pick or create a folder. Main thread.
class FolderDialog {
public:
    virtual ~FolderDialog() = default;

    /// Application-modal. Calls `answer` once on the main thread, after this call has returned,
    /// with nothing if the user cancels; never if the dialog is destroyed first.
    virtual void choose(const FolderQuestion& question,
                        std::function<void(std::optional<std::filesystem::path>)> answer) = 0;
};

} // namespace vantoro
