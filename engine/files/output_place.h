// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/ports/file_system.h"

namespace vantoro {

/// A published recording.
struct FinalFile {
    std::filesystem::path location;
    std::unique_ptr<OutputFile> file; ///< closed; for callers that must discard it again
};

/// A free name for a final recording, reserved by a locked staging file beside it until it is used
/// or this object destroyed. Never touches another program's file. Task threads only.
class OutputPlace {
public:
    /// Takes the first free name of "BASE.m4a", "BASE-2.m4a", … in the folder. A name is taken if
    /// anything has it or its staging path. Throws what the file system throws.
    OutputPlace(FileSystem& fileSystem, std::filesystem::path folder, std::string baseName);
    OutputPlace(OutputPlace&&) noexcept = default;
    OutputPlace& operator=(OutputPlace&&) = delete;
    /// Removes the staging file.
    ~OutputPlace();

    /// The recording's path, unless a program that ignores staging files takes the name.
    std::filesystem::path location() const;

    /// To be written, synced and closed by the caller.
    OutputFile& stagingFile() noexcept { return *staging_; }

    /// Gives the staging file, or `other` if not null, the reserved name or the next free one, on
    /// disk. The file must be complete. Throws what the file system throws, leaving no file behind.
    /// Call once; nothing may follow.
    FinalFile publish(std::unique_ptr<OutputFile> other);

private:
    FileSystem* fileSystem_;
    std::filesystem::path folder_;
    std::string baseName_;
    std::int64_t counter_ = 1;
    std::unique_ptr<OutputFile> staging_;
};

/// Renames a temporary file that holds more than its final file, so that the user sees it and
/// salvage skips it: the final file's name with the extension ".incomplete.mov", preceded by "-2",
/// "-3", … if taken. Never replaces anything. Returns the new path. Blocks; task threads only.
/// Throws what the file system throws, and then leaves the file where it was.
std::filesystem::path setAside(FileSystem& fileSystem, const std::filesystem::path& temporary,
                               const std::filesystem::path& finalFile);

/// The staging path for a final file.
std::filesystem::path stagingPath(std::filesystem::path destination);

} // namespace vantoro
