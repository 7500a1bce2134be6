// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace vantoro {

/// Opens files and pages with other programs. Main thread; never blocks. The request is carried out
/// soon after the call, or replaced by the closest thing that this desktop offers.
class Opener {
public:
    virtual ~Opener() = default;

    /// Opens a file with its default application.
    virtual void open(const std::filesystem::path& file) = 0;

    /// Opens a folder in the file manager, and creates it first if it is missing.
    virtual void openFolder(const std::filesystem::path& folder) = 0;

    /// Opens the file manager with exactly this file selected.
    virtual void reveal(const std::filesystem::path& file) = 0;

    /// Opens a web page.
    virtual void openPage(const std::string& address) = 0;

    /// Opens the settings page of a permission: "Privacy_Microphone" or "Privacy_ScreenCapture".
    virtual void openPrivacySettings(const std::string& anchor) = 0;
};

} // namespace vantoro
