// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/crash/support/journaling_disk.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

namespace vantoro::testing {

namespace {

using Kind = DiskOperation::Kind;
using Bytes = std::vector<std::byte>;
using Names = std::map<std::filesystem::path, std::size_t>;

[[noreturn]] void fail(std::errc code, const std::filesystem::path& path) {
    throw std::system_error(std::make_error_code(code), path.filename().string());
}

void writeInto(Bytes& content, std::uint64_t offset, std::span<const std::byte> bytes) {
    content.resize(std::max<std::size_t>(content.size(), offset + bytes.size()));
    std::ranges::copy(bytes, content.begin() + static_cast<std::ptrdiff_t>(offset));
}

void applyToContent(const DiskOperation& operation, Bytes& content) {
    if (operation.kind == Kind::write) {
        writeInto(content, operation.offset, operation.bytes);
    } else if (operation.kind == Kind::truncate) {
        content.resize(operation.offset);
    }
}

void applyToNames(const DiskOperation& operation, Names& names) {
    if ((operation.kind == Kind::create && !operation.path.empty()) ||
        operation.kind == Kind::name) {
        names[operation.path] = operation.file;
    } else if (operation.kind == Kind::move) {
        if (auto node = names.extract(operation.path)) {
            names[operation.target] = node.mapped();
        }
    } else if (operation.kind == Kind::remove) {
        names.erase(operation.path);
    }
}

/// A disk at a power failure.
class CutDisk {
public:
    CutDisk(const DiskContent& before, const DiskJournal& journal, std::size_t operations) {
        for (const auto& [path, content] : before) {
            safeNames_[path] = contents_.size();
            contents_.push_back({content, {}});
        }
        const std::size_t known = contents_.size();
        for (std::size_t index = 0; index < operations; ++index) {
            DiskOperation operation = journal[index];
            operation.file += known; // the journal numbers its files from 0
            contents_.resize(std::max(contents_.size(), operation.file + 1));
            add(operation);
        }
    }

    std::vector<DiskContent> possible(UnsyncedContent unsynced, std::mt19937& random) const {
        std::vector<DiskContent> all;
        for (std::uint64_t chosen = 0; chosen < std::uint64_t{1} << unsafeNames_.size(); ++chosen) {
            Names names = safeNames_;
            for (std::size_t bit = 0; bit < unsafeNames_.size(); ++bit) {
                if ((chosen >> bit & 1U) != 0) {
                    applyToNames(unsafeNames_[bit], names);
                }
            }
            DiskContent content;
            for (const auto& [path, file] : names) {
                content[path] = contentOf(file, unsynced, random);
            }
            all.push_back(std::move(content));
        }
        return all;
    }

    DiskContent certain() const {
        DiskContent content;
        for (const auto& [path, file] : safeNames_) {
            content[path] = contents_[file].safe;
        }
        return content;
    }

private:
    struct File {
        Bytes safe;
        std::vector<DiskOperation> unsafe;
    };

    void add(const DiskOperation& operation) {
        switch (operation.kind) {
        case Kind::write:
        case Kind::truncate:
            contents_[operation.file].unsafe.push_back(operation);
            break;
        case Kind::syncFile:
            for (const auto& done : std::exchange(contents_[operation.file].unsafe, {})) {
                applyToContent(done, contents_[operation.file].safe);
            }
            break;
        case Kind::syncFolder:
            for (const auto& done : std::exchange(unsafeNames_, {})) {
                applyToNames(done, safeNames_);
            }
            break;
        case Kind::create:
            if (operation.path.empty()) {
                break;
            }
            [[fallthrough]];
        default:
            unsafeNames_.push_back(operation);
        }
    }

    Bytes contentOf(std::size_t file, UnsyncedContent unsynced, std::mt19937& random) const {
        Bytes content = contents_[file].safe;
        for (DiskOperation operation : contents_[file].unsafe) {
            if (unsynced == UnsyncedContent::torn) {
                // Disks write whole sectors in any order; the others stay unchanged.
                constexpr std::size_t sector = 512;
                const std::size_t sectors = operation.bytes.size() / sector;
                operation.bytes.resize(sectors == 0 ? 0 : random() % (sectors + 1) * sector);
                if (random() % 3 == 0) {
                    continue;
                }
            }
            if (unsynced != UnsyncedContent::lost) {
                applyToContent(operation, content);
            }
        }
        return content;
    }

    Names safeNames_;
    std::vector<DiskOperation> unsafeNames_;
    std::vector<File> contents_;
};

class FileInMemory final : public InputFile {
public:
    explicit FileInMemory(Bytes content) : content_(std::move(content)) {}

    std::uint64_t size() const override { return content_.size(); }

    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override {
        const std::size_t begin = std::min<std::size_t>(offset, content_.size());
        const std::size_t count = std::min(into.size(), content_.size() - begin);
        std::ranges::copy(std::span(content_).subspan(begin, count), into.begin());
        return count;
    }

private:
    Bytes content_;
};

} // namespace

class JournaledFile final : public OutputFile {
public:
    /// An empty path means unnamed.
    JournaledFile(JournalingDisk& disk, std::size_t file, std::filesystem::path path = {})
        : disk_(disk), file_(file), path_(std::move(path)), nameIsSafe_(path_.empty()) {}

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        add({.kind = Kind::write,
             .file = file_,
             .offset = offset,
             .bytes = {bytes.begin(), bytes.end()}});
    }

    void truncate(std::uint64_t size) override {
        add({.kind = Kind::truncate, .file = file_, .offset = size});
    }

    void sync() override {
        add({.kind = Kind::syncFile, .file = file_});
        // As on a real disk, the first sync includes the name.
        if (!std::exchange(nameIsSafe_, true)) {
            disk_.syncFolder(path_.parent_path());
        }
    }

    void ensureReachable() override {}

    void takeName(const std::filesystem::path& path) override {
        if (disk_.exists(path)) {
            fail(std::errc::file_exists, path);
        }
        if (path_.empty()) {
            add({.kind = Kind::name, .file = file_, .path = path});
        } else {
            add({.kind = Kind::move, .path = path_, .target = path});
        }
        path_ = path;
        nameIsSafe_ = false;
    }

    void discard() noexcept override {
        if (!path_.empty() && disk_.exists(path_)) {
            disk_.remove(path_);
        }
    }

    void close() override {}

private:
    void add(DiskOperation operation) {
        const std::lock_guard lock(disk_.mutex_);
        disk_.add(std::move(operation));
    }

    JournalingDisk& disk_;
    std::size_t file_;
    std::filesystem::path path_;
    bool nameIsSafe_;
};

// Files from before the journal have numbers after all others.
JournalingDisk::JournalingDisk(DiskContent content) {
    constexpr std::size_t firstOfOld = 1000;
    files_.resize(firstOfOld);
    for (auto& [path, bytes] : content) {
        names_[path] = files_.size();
        files_.push_back(std::move(bytes));
    }
}

DiskJournal JournalingDisk::journal() const {
    const std::lock_guard lock(mutex_);
    return journal_;
}

DiskContent JournalingDisk::content() const {
    const std::lock_guard lock(mutex_);
    DiskContent content;
    for (const auto& [path, file] : names_) {
        content[path] = files_[file];
    }
    return content;
}

void JournalingDisk::add(DiskOperation operation) {
    applyToNames(operation, names_);
    applyToContent(operation, files_[operation.file]);
    journal_.push_back(std::move(operation));
}

bool JournalingDisk::exists(const std::filesystem::path& path) const {
    const std::lock_guard lock(mutex_);
    return names_.contains(path);
}

void JournalingDisk::remove(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    if (!names_.contains(path)) {
        fail(std::errc::no_such_file_or_directory, path);
    }
    add({.kind = Kind::remove, .path = path});
}

void JournalingDisk::move(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::lock_guard lock(mutex_);
    if (!names_.contains(from)) {
        fail(std::errc::no_such_file_or_directory, from);
    }
    if (names_.contains(to)) {
        fail(std::errc::file_exists, to);
    }
    add({.kind = Kind::move, .path = from, .target = to});
}

void JournalingDisk::syncFolder(const std::filesystem::path& /*folder*/) {
    const std::lock_guard lock(mutex_);
    add({.kind = Kind::syncFolder});
}

std::unique_ptr<OutputFile> JournalingDisk::create(const std::filesystem::path& path,
                                                   FileAudience /*audience*/) {
    const std::lock_guard lock(mutex_);
    if (names_.contains(path)) {
        fail(std::errc::file_exists, path);
    }
    const std::size_t file = nextFile();
    add({.kind = Kind::create, .file = file, .path = path});
    return std::make_unique<JournaledFile>(*this, file, path);
}

std::unique_ptr<OutputFile> JournalingDisk::claim(const std::filesystem::path& path,
                                                  FileAudience audience) {
    if (exists(path)) {
        remove(path);
    }
    return create(path, audience);
}

std::unique_ptr<OutputFile> JournalingDisk::createUnnamed(const std::filesystem::path& /*folder*/,
                                                          FileAudience /*audience*/) {
    const std::lock_guard lock(mutex_);
    const std::size_t file = nextFile();
    add({.kind = Kind::create, .file = file});
    created_.notify_all();
    return std::make_unique<JournaledFile>(*this, file);
}

bool JournalingDisk::waitForUnnamedFile() {
    const auto isUnnamed = [](const DiskOperation& operation) {
        return operation.kind == Kind::create && operation.path.empty();
    };
    std::unique_lock lock(mutex_);
    return created_.wait_for(lock, std::chrono::seconds(30),
                             [&] { return std::ranges::any_of(journal_, isUnnamed); });
}

std::size_t JournalingDisk::nextFile() const {
    return static_cast<std::size_t>(
        std::ranges::count(journal_, Kind::create, &DiskOperation::kind));
}

std::unique_ptr<InputFile> JournalingDisk::open(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    const auto name = names_.find(path);
    if (name == names_.end()) {
        fail(std::errc::no_such_file_or_directory, path);
    }
    return std::make_unique<FileInMemory>(files_[name->second]);
}

std::vector<FolderEntry> JournalingDisk::list(const std::filesystem::path& /*folder*/) {
    const std::lock_guard lock(mutex_);
    std::vector<FolderEntry> entries;
    entries.reserve(names_.size());
    for (const auto& [path, file] : names_) {
        entries.push_back({path, std::nullopt});
    }
    return entries;
}

std::unique_ptr<FileLock> JournalingDisk::lock(const std::filesystem::path& /*path*/) {
    class Lock final : public FileLock {}; // its holder has died

    return std::make_unique<Lock>();
}

std::vector<DiskContent> possibleContents(const DiskContent& before, const DiskJournal& journal,
                                          std::size_t operations, UnsyncedContent unsynced,
                                          std::mt19937& random) {
    return CutDisk(before, journal, operations).possible(unsynced, random);
}

DiskContent certainContent(const DiskContent& before, const DiskJournal& journal,
                           std::size_t operations) {
    return CutDisk(before, journal, operations).certain();
}

} // namespace vantoro::testing
