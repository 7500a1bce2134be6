// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/module/program_module.h"

#include <string_view>

#include <dlfcn.h>

#include "engine/failure.h"

namespace vantoro {

namespace {

Failure failedToLoad(const std::filesystem::path& file) {
    const char* const reason = ::dlerror();
    return Failure(FailureCode::partNotLoaded, reason != nullptr ? reason : file.c_str());
}

} // namespace

std::filesystem::path moduleBesideTheProgram(const std::string& fileName) {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / fileName;
    return exists(built) ? built : folder / ".." / VANTORO_LIBRARY_FOLDER / "vantoro" / fileName;
}

const ProgramModule& loadModule(const std::filesystem::path& file, const char* name) {
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        throw failedToLoad(file);
    }
    const auto* const module = static_cast<const ProgramModule*>(::dlsym(handle, name));
    if (module == nullptr) {
        throw failedToLoad(file);
    }
    if (module->version != std::string_view(VANTORO_VERSION)) {
        throw Failure(FailureCode::programUpdated);
    }
    return *module;
}

} // namespace vantoro
