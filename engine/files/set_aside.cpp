// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/set_aside.h"

#include <cstdint>
#include <exception>
#include <string>
#include <system_error>

namespace vantoro {

namespace {

std::filesystem::path moveToFreeName(FileSystem& fileSystem, const std::filesystem::path& temporary,
                                     const std::filesystem::path& finalFile) {
    const std::string base = finalFile.stem().string();
    for (std::int64_t counter = 1;; ++counter) {
        const std::string number = counter == 1 ? "" : "-" + std::to_string(counter);
        auto place = finalFile.parent_path() / (base + number + ".incomplete.mov");
        try {
            fileSystem.move(temporary, place);
            return place;
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::file_exists) {
                throw;
            }
        }
    }
}

} // namespace

std::filesystem::path setAside(FileSystem& fileSystem, const std::filesystem::path& temporary,
                               const std::filesystem::path& finalFile) {
    auto place = moveToFreeName(fileSystem, temporary, finalFile);
    try {
        fileSystem.syncFolder(place.parent_path());
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The file has moved. At worst a power cut restores its old name, and it is salvaged again.
    }
    return place;
}

} // namespace vantoro
