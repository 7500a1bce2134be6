// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace vantoro {

/// What a folder dialog says and where it begins.
struct FolderQuestion {
    std::string title;
    std::string prompt; ///< on the button that confirms
    std::filesystem::path directory;
};

/// Lets the user pick one folder, or make one. Main thread.
class FolderDialog {
public:
    virtual ~FolderDialog() = default;

    /// Modal: the user does nothing else with the program until it is answered. `answer` is called
    /// once on the main thread, after the call has returned, with nothing when the user thought
    /// better of it; not at all when the panel is destroyed before.
    virtual void choose(const FolderQuestion& question,
                        std::function<void(std::optional<std::filesystem::path>)> answer) = 0;
};

} // namespace vantoro
