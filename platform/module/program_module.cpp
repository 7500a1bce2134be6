// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/module/program_module.h"

#include <stdexcept>
#include <string_view>

#include <dlfcn.h>

namespace vantoro {

namespace {

std::runtime_error failedToLoad(const std::filesystem::path& file) {
    const char* const reason = ::dlerror();
    return std::runtime_error("A part of the program cannot be loaded: " +
                              std::string(reason != nullptr ? reason : file.c_str()));
}

} // namespace

std::filesystem::path moduleBesideTheProgram(const std::string& fileName) {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / fileName;
    return exists(built) ? built : folder / ".." / "lib" / "vantoro" / fileName;
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
        throw std::runtime_error(
            "The program was updated while it ran: quit it and start it again.");
    }
    return *module;
}

} // namespace vantoro
