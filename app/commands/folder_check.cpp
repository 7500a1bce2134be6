// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/folder_check.h"

#include <array>
#include <cstddef>
#include <memory>
#include <system_error>

#include "engine/files/file_names.h"

namespace vantoro {

namespace {

/// The folder itself, or the closest existing parent.
std::filesystem::path nearestExisting(const FileSystem& fileSystem, std::filesystem::path folder) {
    while (!fileSystem.exists(folder) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

void write(OutputFile& file) {
    file.writeAt(0, std::array<std::byte, 1>{});
    file.close();
}

/// Throws if no file can be created there.
void tryToWrite(FileSystem& fileSystem, const std::filesystem::path& folder) {
    if (const auto unnamed = fileSystem.createUnnamed(folder, FileAudience::userOnly)) {
        write(*unnamed);
        return;
    }
    // A name that no scan takes for a recording.
    const auto path = folder / (temporaryFileName() + ".trial");
    const auto named = fileSystem.create(path, FileAudience::userOnly);
    try {
        write(*named);
    } catch (...) {
        fileSystem.remove(path);
        throw;
    }
    fileSystem.remove(path);
}

std::optional<std::uint64_t> availableSpace(const FileSystem& fileSystem,
                                            const std::filesystem::path& folder) {
    try {
        return fileSystem.availableSpace(folder);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace

FolderCheck checkFolder(FileSystem& fileSystem, const std::filesystem::path& folder) {
    FolderCheck check;
    try {
        const auto existing = nearestExisting(fileSystem, folder);
        check.exists = existing == folder;
        check.availableBytes = availableSpace(fileSystem, existing);
        tryToWrite(fileSystem, existing);
    } catch (const std::system_error& error) {
        check.refusal = error.code();
    }
    return check;
}

} // namespace vantoro
