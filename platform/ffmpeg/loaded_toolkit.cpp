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

std::unique_ptr<FileWriter> LoadedToolkit::makeWriter(const std::filesystem::path& location) {
    return loaded().makeWriter(location);
}

std::unique_ptr<Asset> LoadedToolkit::openAsset(const std::filesystem::path& location) {
    return loaded().openAsset(location);
}

std::unique_ptr<Composition> LoadedToolkit::makeComposition() {
    return loaded().makeComposition();
}

std::unique_ptr<ExportSession> LoadedToolkit::makeExportSession(const Composition& composition) {
    return loaded().makeExportSession(composition);
}

} // namespace vantoro::ffmpeg
