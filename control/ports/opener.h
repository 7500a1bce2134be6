// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace vantoro {

/// The desktop around the program. Called on the main thread, which is never kept waiting: what is
/// asked for happens soon after, or the nearest thing to it that this desktop can do.
class Opener {
public:
    virtual ~Opener() = default;

    /// Opens a file with its default application.
    virtual void open(const std::filesystem::path& file) = 0;

    /// Shows a folder in the file manager, and makes it first where it is missing.
    virtual void openFolder(const std::filesystem::path& folder) = 0;

    /// Shows the file manager with exactly this file selected.
    virtual void reveal(const std::filesystem::path& file) = 0;

    /// Opens a page of the web.
    virtual void openPage(const std::string& address) = 0;

    /// Shows where the user decides about a permission: "Privacy_Microphone" or
    /// "Privacy_ScreenCapture".
    virtual void openPrivacySettings(const std::string& anchor) = 0;
};

} // namespace vantoro
