// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/ports/file_system.h"

namespace vantoro {

/// A recording under its final name.
struct FinalFile {
    std::filesystem::path location;
    std::unique_ptr<OutputFile> file; ///< closed; for who finds that it must not stay
};

/// A name for a final recording that is free, and kept free from others until it is used or this is
/// destroyed: by a staging file beside it, which is locked from its creation on. Nothing that
/// somebody else made is ever replaced or removed. Task threads only.
class OutputPlace {
public:
    /// The first free one of "BASE.m4a", "BASE-2.m4a", … in the folder. A name is taken when
    /// anything has it, somebody exports to it, or something odd lies in the staging file's place.
    /// Throws what the file system throws.
    OutputPlace(FileSystem& fileSystem, std::filesystem::path folder, std::string baseName);
    OutputPlace(OutputPlace&&) noexcept = default;
    OutputPlace& operator=(OutputPlace&&) = delete;
    /// No staging file stays.
    ~OutputPlace();

    /// Where the recording will be, unless somebody who knows of no staging files takes the name.
    std::filesystem::path location() const;

    /// To be filled, synced and closed.
    OutputFile& stagingFile() noexcept { return *staging_; }

    /// Gives a complete file the name, or the next free one, and returns when that is on the disk.
    /// `other`: in place of the staging file, where it is not null. Throws what the file system
    /// throws; then no file of this attempt is left. Nothing may follow.
    FinalFile publish(std::unique_ptr<OutputFile> other);

private:
    FileSystem* fileSystem_;
    std::filesystem::path folder_;
    std::string baseName_;
    std::int64_t counter_ = 1;
    std::unique_ptr<OutputFile> staging_;
};

/// Where a final file is exported to before it is complete.
std::filesystem::path stagingPath(std::filesystem::path destination);

} // namespace vantoro
