// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/output_place.h"

#include <exception>
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
template <class TakeName>
bool tryTo(const TakeName& takeName) {
    try {
        takeName();
        return true;
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::file_exists) {
            throw;
        }
        return false;
    }
}

/// The name with "-2", "-3", … before the extension, from the second attempt on.
std::string numbered(const std::string& name, std::int64_t counter, const char* extension) {
    return name + (counter == 1 ? "" : "-" + std::to_string(counter)) + extension;
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
    return folder_ / numbered(baseName_, counter_, ".m4a");
}

FinalFile OutputPlace::publish(std::unique_ptr<OutputFile> other) {
    auto& file = other ? other : staging_;
    try {
        while (!tryTo([&] { file->takeName(location()); })) {
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

std::filesystem::path setAside(FileSystem& fileSystem, const std::filesystem::path& temporary,
                               const std::filesystem::path& finalFile) {
    std::filesystem::path place;
    std::int64_t counter = 0;
    do {
        const auto name = numbered(finalFile.stem().string(), ++counter, ".incomplete.mov");
        place = finalFile.parent_path() / name;
    } while (!tryTo([&] { fileSystem.move(temporary, place); }));
    try {
        fileSystem.syncFolder(place.parent_path());
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The file has moved. At worst a power cut restores its old name, and it is salvaged again.
    }
    return place;
}

std::filesystem::path stagingPath(std::filesystem::path destination) {
    return destination.replace_extension("exporting.m4a");
}

} // namespace vantoro
