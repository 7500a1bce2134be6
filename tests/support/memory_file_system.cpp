// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/memory_file_system.h"

#include <algorithm>
#include <chrono>
#include <ranges>
#include <system_error>
#include <utility>

namespace vantoro::testing {

namespace {

constexpr std::chrono::seconds deadline{30};

[[noreturn]] void fail(std::errc code, const char* action) {
    throw std::system_error(std::make_error_code(code), action);
}

class MemoryLock final : public FileLock {
public:
    MemoryLock(CallLog& log, std::string name) : log_(log), name_(std::move(name)) {
        log_.add("lock " + name_);
    }

    MemoryLock(const MemoryLock&) = delete;
    MemoryLock& operator=(const MemoryLock&) = delete;

    ~MemoryLock() override { log_.add("unlock " + name_); }

private:
    CallLog& log_;
    std::string name_;
};

class MemoryInputFile final : public InputFile {
public:
    explicit MemoryInputFile(std::vector<std::byte> content) : content_(std::move(content)) {}

    std::uint64_t size() const override { return content_.size(); }

    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override {
        if (offset >= content_.size()) {
            return 0;
        }
        const std::size_t count = std::min<std::size_t>(into.size(), content_.size() - offset);
        std::ranges::copy(std::span(content_).subspan(offset, count), into.begin());
        return count;
    }

private:
    std::vector<std::byte> content_;
};

} // namespace

void MemoryFileSystem::createFolders(const std::filesystem::path& folder) {
    log_.add("createFolders " + folder.string());
    throwIfSet(createFoldersError);
}

bool MemoryFileSystem::exists(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    return files_.contains(path);
}

void MemoryFileSystem::remove(const std::filesystem::path& path) {
    log_.add("remove " + path.filename().string());
    if (const auto error = removeErrors.find(path); error != removeErrors.end()) {
        throwIfSet(error->second);
    }
    {
        const std::lock_guard lock(mutex_);
        if (files_.erase(path) == 0) {
            fail(std::errc::no_such_file_or_directory, "Removing the file");
        }
    }
    if (afterRemove) {
        afterRemove(path);
    }
}

void MemoryFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
    log_.add("move " + from.filename().string() + " " + to.filename().string());
    throwIfSet(moveError);
    const std::lock_guard lock(mutex_);
    if (!files_.try_emplace(to, files_.at(from)).second) {
        fail(std::errc::file_exists, "Moving the file");
    }
    files_.erase(from);
}

void MemoryFileSystem::syncFolder(const std::filesystem::path& folder) {
    log_.add("syncFolder " + folder.string());
    throwIfSet(syncFolderError);
}

std::unique_ptr<OutputFile> MemoryFileSystem::create(const std::filesystem::path& path,
                                                     FileAudience audience) {
    log_.add("create " + path.filename().string());
    throwIfSet(createError);
    const std::lock_guard lock(mutex_);
    return make(path, audience);
}

std::unique_ptr<OutputFile> MemoryFileSystem::claim(const std::filesystem::path& path,
                                                    FileAudience audience) {
    log_.add("claim " + path.filename().string());
    throwIfSet(claimError);
    if (locked.contains(path)) {
        return nullptr;
    }
    std::unique_ptr<OutputFile> file;
    {
        const std::lock_guard lock(mutex_);
        files_.erase(path);
        file = make(path, audience);
    }
    if (afterClaim) {
        afterClaim();
    }
    return file;
}

std::unique_ptr<OutputFile> MemoryFileSystem::make(const std::filesystem::path& path,
                                                   FileAudience audience) {
    if (capacity_ == 0) {
        fail(std::errc::no_space_on_device, "Creating the file");
    }
    const auto [place, isNew] = files_.try_emplace(path, std::make_shared<MemoryFile>());
    if (!isNew) {
        fail(std::errc::file_exists, "Creating the file");
    }
    audience_ = audience;
    place->second->journal.emplace_back("create");
    return outputFile(place->second, path);
}

std::unique_ptr<OutputFile> MemoryFileSystem::createUnnamed(const std::filesystem::path& /*folder*/,
                                                            FileAudience audience) {
    throwIfSet(createUnnamedError);
    const std::lock_guard lock(mutex_);
    changed_.notify_all();
    if (!hasUnnamedFiles) {
        unnamed_.emplace_back();
        return nullptr;
    }
    audience_ = audience;
    const auto file = std::make_shared<MemoryFile>();
    file->journal.emplace_back("unnamed");
    unnamed_.push_back(file);
    return outputFile(file, {});
}

std::uint64_t MemoryFileSystem::availableSpace(const std::filesystem::path& folder) const {
    log_.add("availableSpace " + folder.string());
    throwIfSet(availableSpaceError);
    const std::lock_guard lock(mutex_);
    changed_.notify_all();
    return capacity_ - std::min(capacity_, used());
}

std::unique_ptr<InputFile> MemoryFileSystem::open(const std::filesystem::path& path) {
    throwIfSet(openError);
    return std::make_unique<MemoryInputFile>(contentOf(path));
}

std::vector<FolderEntry> MemoryFileSystem::list(const std::filesystem::path& folder) {
    throwIfSet(listError);
    const std::lock_guard lock(mutex_);
    std::vector<FolderEntry> entries;
    for (const auto& [path, file] : files_) {
        if (path.parent_path() == folder) {
            entries.push_back({path, file->modified});
        }
    }
    return entries;
}

std::unique_ptr<FileLock> MemoryFileSystem::lock(const std::filesystem::path& path) {
    return locked.contains(path) ? nullptr
                                 : std::make_unique<MemoryLock>(log_, path.filename().string());
}

void MemoryFileSystem::clear() {
    const std::lock_guard lock(mutex_);
    files_.clear();
}

void MemoryFileSystem::put(const std::filesystem::path& path, std::vector<std::byte> content,
                           std::optional<std::filesystem::file_time_type> modified) {
    const std::lock_guard lock(mutex_);
    files_[path] = std::make_shared<MemoryFile>(MemoryFile{std::move(content), {}, modified});
}

std::set<std::filesystem::path> MemoryFileSystem::paths() const {
    const std::lock_guard lock(mutex_);
    const auto keys = std::views::keys(files_);
    return {keys.begin(), keys.end()};
}

std::vector<std::byte> MemoryFileSystem::contentOf(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    const auto file = files_.find(path);
    if (file == files_.end()) {
        fail(std::errc::no_such_file_or_directory, "Opening the file");
    }
    return file->second->content;
}

std::vector<std::string> MemoryFileSystem::journalOf(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    return files_.at(path)->journal;
}

void MemoryFileSystem::setCapacity(std::uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    capacity_ = bytes;
}

void MemoryFileSystem::setStuck(bool stuck) {
    const std::lock_guard lock(mutex_);
    stuck_ = stuck;
    changed_.notify_all();
}

bool MemoryFileSystem::comesTrue(const std::function<bool()>& condition) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, condition);
}

bool MemoryFileSystem::waitUntilSpaceIsAsked() {
    return comesTrue([this] { return !log_.startingWith("availableSpace").empty(); });
}

bool MemoryFileSystem::waitForUnnamed(std::size_t count) {
    return comesTrue([&] { return unnamed_.size() >= count; });
}

bool MemoryFileSystem::waitUntilStuck() {
    return comesTrue([this] { return someoneWaits_; });
}

bool MemoryFileSystem::waitForSyncedSize(const std::filesystem::path& path, std::size_t size) {
    return comesTrue([&] {
        const auto file = files_.find(path);
        return file != files_.end() && file->second->content.size() >= size &&
               file->second->journal.back() == "sync";
    });
}

bool MemoryFileSystem::waitForSyncs(const std::filesystem::path& path, std::ptrdiff_t count) {
    return comesTrue([&] {
        const auto file = files_.find(path);
        return file != files_.end() && std::ranges::count(file->second->journal, "sync") >= count;
    });
}

std::uint64_t MemoryFileSystem::used() const {
    std::uint64_t sum = 0;
    for (const auto& [path, file] : files_) {
        sum += file->content.size();
    }
    for (const auto& unnamed : unnamed_) {
        const auto file = unnamed.lock();
        const bool isNamed =
            std::ranges::any_of(files_, [&](const auto& entry) { return entry.second == file; });
        sum += file && !isNamed ? file->content.size() : 0;
    }
    return sum;
}

} // namespace vantoro::testing
