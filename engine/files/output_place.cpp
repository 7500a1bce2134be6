// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/output_place.h"

#include <system_error>
#include <utility>

namespace vantoro {

namespace {

/// Null if the name is taken.
std::unique_ptr<OutputFile> reserve(FileSystem& fileSystem,
                                    const std::filesystem::path& destination) {
    if (fileSystem.exists(destination)) {
        return nullptr;
    }
    auto staging = fileSystem.claim(stagingPath(destination), FileAudience::asUserPrefers);
    // The staging file's previous owner may have finished in between.
    if (staging && fileSystem.exists(destination)) {
        staging->discard();
        return nullptr;
    }
    return staging;
}

/// False if the name is taken.
bool tryToName(OutputFile& file, const std::filesystem::path& path) {
    try {
        file.takeName(path);
        return true;
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::file_exists) {
            throw;
        }
        return false;
    }
}

} // namespace

OutputPlace::OutputPlace(FileSystem& fileSystem, std::filesystem::path folder, std::string baseName)
    : fileSystem_(&fileSystem), folder_(std::move(folder)), baseName_(std::move(baseName)) {
    while (!(staging_ = reserve(fileSystem, location()))) {
        ++counter_;
    }
}

OutputPlace::~OutputPlace() {
    if (staging_) {
        staging_->discard();
    }
}

std::filesystem::path OutputPlace::location() const {
    const auto count = counter_ == 1 ? std::string() : "-" + std::to_string(counter_);
    return folder_ / (baseName_ + count + ".m4a");
}

FinalFile OutputPlace::publish(std::unique_ptr<OutputFile> other) {
    auto& file = other ? other : staging_;
    try {
        while (!tryToName(*file, location())) {
            ++counter_;
        }
        // Sources may be deleted only once the name is on disk.
        fileSystem_->syncFolder(folder_);
    } catch (...) {
        file->discard();
        throw;
    }
    return {.location = location(), .file = std::move(file)};
}

std::filesystem::path stagingPath(std::filesystem::path destination) {
    return destination.replace_extension("exporting.m4a");
}

} // namespace vantoro
