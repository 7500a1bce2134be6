// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace vantoro {

/// Opens files and pages with other programs, soon after the call, or does the closest thing that
/// this desktop offers. Main thread; never blocks.
class Opener {
public:
    virtual ~Opener() = default;

    /// With the file's default application.
    virtual void open(const std::filesystem::path& file) = 0;
    /// In the file manager; creates a missing folder first.
    virtual void openFolder(const std::filesystem::path& folder) = 0;
    /// Opens the file manager with exactly this file selected.
    virtual void reveal(const std::filesystem::path& file) = 0;
    virtual void openPage(const std::string& address) = 0;
    /// Opens the settings page of a permission: "Privacy_Microphone" or "Privacy_ScreenCapture".
    virtual void openPrivacySettings(const std::string& anchor) = 0;
};

} // namespace vantoro
