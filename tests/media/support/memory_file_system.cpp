// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/media/support/memory_file_system.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

namespace vantoro {

namespace {

constexpr std::chrono::seconds deadline{30};

[[noreturn]] void fail(std::errc code, const char* action) {
    throw std::system_error(std::make_error_code(code), action);
}

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

class MemoryOutputFile final : public OutputFile {
public:
    /// An empty path: without a name.
    MemoryOutputFile(MemoryFileSystem& system, std::shared_ptr<MemoryFile> file,
                     std::filesystem::path path = {})
        : system_(system), file_(std::move(file)), path_(std::move(path)) {}

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        std::unique_lock lock(system_.mutex_);
        system_.someoneWaits_ = true;
        system_.changed_.notify_all();
        system_.changed_.wait(lock, [this] { return !system_.stuck_; });
        system_.someoneWaits_ = false;
        note("write");
        const std::uint64_t others = system_.used() - file_->content.size();
        const std::uint64_t room = system_.capacity_ - std::min(system_.capacity_, others + offset);
        const std::size_t count = std::min<std::uint64_t>(bytes.size(), room);
        if (count > 0) {
            file_->content.resize(std::max<std::size_t>(file_->content.size(), offset + count));
            std::ranges::copy(bytes.first(count),
                              file_->content.begin() + static_cast<std::ptrdiff_t>(offset));
        }
        if (count < bytes.size()) {
            fail(std::errc::no_space_on_device, "Writing the file");
        }
    }

    void truncate(std::uint64_t size) override {
        const std::lock_guard lock(system_.mutex_);
        note("truncate");
        file_->content.resize(size);
    }

    void sync() override {
        const std::lock_guard lock(system_.mutex_);
        note("sync");
        if (system_.syncFails_) {
            fail(std::errc::io_error, "Syncing the file");
        }
        system_.changed_.notify_all();
    }

    void ensureReachable() override {
        const std::lock_guard lock(system_.mutex_);
        note("reach");
        if (system_.unreachable_) {
            fail(std::errc::permission_denied, "Putting the file back");
        }
    }

    void takeName(const std::filesystem::path& path) override {
        const std::lock_guard lock(system_.mutex_);
        if (!system_.files_.try_emplace(path, file_).second) {
            fail(std::errc::file_exists, "Naming the file");
        }
        system_.files_.erase(std::exchange(path_, path));
        note("name");
    }

    void discard() noexcept override {
        const std::lock_guard lock(system_.mutex_);
        system_.files_.erase(path_);
    }

    void close() override {
        const std::lock_guard lock(system_.mutex_);
        note("close");
    }

private:
    void note(const char* action) { file_->journal.emplace_back(action); }

    MemoryFileSystem& system_;
    std::shared_ptr<MemoryFile> file_;
    std::filesystem::path path_;
};

bool MemoryFileSystem::exists(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    return files_.contains(path);
}

void MemoryFileSystem::remove(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    if (files_.erase(path) == 0) {
        fail(std::errc::no_such_file_or_directory, "Removing the file");
    }
}

void MemoryFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::lock_guard lock(mutex_);
    if (!files_.try_emplace(to, files_.at(from)).second) {
        fail(std::errc::file_exists, "Moving the file");
    }
    files_.erase(from);
}

std::unique_ptr<OutputFile> MemoryFileSystem::create(const std::filesystem::path& path,
                                                     FileAudience audience) {
    const std::lock_guard lock(mutex_);
    if (capacity_ == 0) {
        fail(std::errc::no_space_on_device, "Creating the file");
    }
    const auto [place, isNew] = files_.try_emplace(path, std::make_shared<MemoryFile>());
    if (!isNew) {
        fail(std::errc::file_exists, "Creating the file");
    }
    audience_ = audience;
    place->second->journal.emplace_back("create");
    return std::make_unique<MemoryOutputFile>(*this, place->second, path);
}

std::unique_ptr<OutputFile> MemoryFileSystem::claim(const std::filesystem::path& path,
                                                    FileAudience audience) {
    {
        const std::lock_guard lock(mutex_);
        files_.erase(path);
    }
    return create(path, audience);
}

std::unique_ptr<OutputFile> MemoryFileSystem::createUnnamed(const std::filesystem::path&,
                                                            FileAudience audience) {
    const std::lock_guard lock(mutex_);
    if (!hasUnnamed_) {
        unnamed_.emplace_back();
        changed_.notify_all();
        return nullptr;
    }
    audience_ = audience;
    const auto file = std::make_shared<MemoryFile>();
    file->journal.emplace_back("unnamed");
    unnamed_.push_back(file);
    changed_.notify_all();
    return std::make_unique<MemoryOutputFile>(*this, file);
}

std::uint64_t MemoryFileSystem::availableSpace(const std::filesystem::path&) const {
    const std::lock_guard lock(mutex_);
    isSpaceAsked_ = true;
    changed_.notify_all();
    return capacity_ - std::min(capacity_, used());
}

std::unique_ptr<InputFile> MemoryFileSystem::open(const std::filesystem::path& path) {
    return std::make_unique<MemoryInputFile>(contentOf(path));
}

std::vector<FolderEntry> MemoryFileSystem::list(const std::filesystem::path& folder) {
    const std::lock_guard lock(mutex_);
    std::vector<FolderEntry> entries;
    for (const auto& [path, file] : files_) {
        if (path.parent_path() == folder) {
            entries.push_back({path, std::nullopt});
        }
    }
    return entries;
}

std::unique_ptr<FileLock> MemoryFileSystem::lock(const std::filesystem::path& /*path*/) {
    class Lock final : public FileLock {};

    return std::make_unique<Lock>();
}

void MemoryFileSystem::clear() {
    const std::lock_guard lock(mutex_);
    files_.clear();
}

void MemoryFileSystem::put(const std::filesystem::path& path, std::vector<std::byte> content) {
    const std::lock_guard lock(mutex_);
    files_[path] = std::make_shared<MemoryFile>(MemoryFile{std::move(content), {}});
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

void MemoryFileSystem::setSyncFails(bool fails) {
    const std::lock_guard lock(mutex_);
    syncFails_ = fails;
}

void MemoryFileSystem::setUnreachable() {
    const std::lock_guard lock(mutex_);
    unreachable_ = true;
}

void MemoryFileSystem::setHasNoUnnamedFiles() {
    const std::lock_guard lock(mutex_);
    hasUnnamed_ = false;
}

bool MemoryFileSystem::waitUntilSpaceIsAsked() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, [&] { return isSpaceAsked_; });
}

bool MemoryFileSystem::waitForUnnamed(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, [&] { return unnamed_.size() >= count; });
}

void MemoryFileSystem::setStuck(bool stuck) {
    const std::lock_guard lock(mutex_);
    stuck_ = stuck;
    changed_.notify_all();
}

bool MemoryFileSystem::waitUntilStuck() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, [this] { return someoneWaits_; });
}

bool MemoryFileSystem::waitForSyncedSize(const std::filesystem::path& path, std::size_t size) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, [&] {
        const auto file = files_.find(path);
        return file != files_.end() && file->second->content.size() >= size &&
               file->second->journal.back() == "sync";
    });
}

bool MemoryFileSystem::waitForSyncs(const std::filesystem::path& path, std::ptrdiff_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, deadline, [&] {
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

} // namespace vantoro
