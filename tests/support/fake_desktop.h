// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "control/ports/audio_devices.h"
#include "control/ports/folder_dialog.h"
#include "control/ports/opener.h"

namespace vantoro::testing {

class FakeAudioDevices final : public AudioDevices {
public:
    std::vector<AudioInputDevice> list{{"built-in", "Built-in"}, {"headset", "Headset"}};
    std::optional<std::string> systemDefault = "built-in";
    int readings = 0;
    std::function<void()> meanwhile; ///< runs once, while the list is being read

    bool mayCapture = true;

    FoundDevices find() override {
        ++readings;
        if (const auto what = std::exchange(meanwhile, nullptr)) {
            what();
        }
        return {.mayCapture = mayCapture, .microphones = list, .defaultMicrophone = systemDefault};
    }
};

/// Records the requests.
class FakeOpener final : public Opener {
public:
    std::vector<std::string> calls;

    void open(const std::filesystem::path& file) override {
        calls.push_back("open " + file.string());
    }

    void openFolder(const std::filesystem::path& folder) override {
        calls.push_back("open folder " + folder.string());
    }

    void reveal(const std::filesystem::path& file) override {
        calls.push_back("reveal " + file.string());
    }

    void openPage(const std::string& address) override { calls.push_back("page " + address); }

    void openPrivacySettings(const std::string& anchor) override {
        calls.push_back("settings " + anchor);
    }
};

/// The test plays the user.
class FakeFolderDialog final : public FolderDialog {
public:
    std::vector<FolderQuestion> questions;
    std::function<void(std::optional<std::filesystem::path>)> answer; ///< to the latest question

    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answered) override {
        questions.push_back(question);
        answer = std::move(answered);
    }
};

} // namespace vantoro::testing
