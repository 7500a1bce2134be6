// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/loaded_toolkit.h"

#include <utility>

#include "platform/ffmpeg/toolkit_module.h"

namespace vantoro::ffmpeg {

LoadedToolkit::LoadedToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved,
                             std::filesystem::path module)
    : fileSystem_(fileSystem), isPowerSaved_(std::move(isPowerSaved)), module_(std::move(module)) {}

MediaToolkit& LoadedToolkit::loaded() {
    const std::lock_guard lock(mutex_);
    if (!toolkit_) {
        const auto& module =
            static_cast<const ToolkitModule&>(loadModule(module_, toolkitModuleName));
        toolkit_.reset(module.make(fileSystem_, isPowerSaved_));
    }
    return *toolkit_;
}

std::unique_ptr<RecordingWriter>
LoadedToolkit::makeWriter(const std::filesystem::path& location, FragmentIntervals intervals,
                          FragmentWrittenCallback onFragmentWritten) {
    return loaded().makeWriter(location, intervals, std::move(onFragmentWritten));
}

std::unique_ptr<Recording> LoadedToolkit::openRecording(const std::filesystem::path& location) {
    return loaded().openRecording(location);
}

} // namespace vantoro::ffmpeg
