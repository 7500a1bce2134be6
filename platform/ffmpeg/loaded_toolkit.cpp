#include "platform/ffmpeg/loaded_toolkit.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <dlfcn.h>

#include "platform/ffmpeg/toolkit_module.h"

namespace vantoro::ffmpeg {

namespace {

constexpr const char* fileName = "vantoro-media.so";

std::runtime_error failedToLoad(const std::filesystem::path& file) {
    const char* const reason = ::dlerror();
    return std::runtime_error("A part of the program cannot be loaded: " +
                              std::string(reason != nullptr ? reason : file.c_str()));
}

/// It stays in memory until the process ends: what it made may live as long.
std::unique_ptr<MediaToolkit> load(const std::filesystem::path& file, FileSystem& fileSystem) {
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        throw failedToLoad(file);
    }
    const auto* const module =
        static_cast<const ToolkitModule*>(::dlsym(handle, toolkitModuleName));
    if (module == nullptr) {
        throw failedToLoad(file);
    }
    if (module->version != std::string_view(VANTORO_VERSION)) {
        throw std::runtime_error(
            "The program was updated while it ran: quit it and start it again.");
    }
    return std::unique_ptr<MediaToolkit>(module->make(fileSystem));
}

} // namespace

LoadedToolkit::LoadedToolkit(FileSystem& fileSystem, std::filesystem::path module)
    : fileSystem_(fileSystem), module_(std::move(module)) {}

std::filesystem::path LoadedToolkit::moduleBesideTheProgram() {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / fileName;
    return exists(built) ? built : folder / ".." / "lib" / "vantoro" / fileName;
}

MediaToolkit& LoadedToolkit::loaded() {
    const std::lock_guard lock(mutex_);
    if (!toolkit_) {
        toolkit_ = load(module_, fileSystem_);
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
