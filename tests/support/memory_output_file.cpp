// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <span>
#include <string>
#include <system_error>
#include <utility>

#include "tests/support/memory_file_system.h"

namespace vantoro::testing {

class MemoryOutputFile final : public OutputFile {
public:
    MemoryOutputFile(MemoryFileSystem& system, std::shared_ptr<MemoryFile> file,
                     std::filesystem::path path)
        : system_(system), file_(std::move(file)), path_(std::move(path)) {}

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        system_.log_.add("write " + path_.filename().string());
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
        if (system_.syncFails) {
            fail(std::errc::io_error, "Syncing the file");
        }
        system_.changed_.notify_all();
    }

    void ensureReachable() override {
        const std::lock_guard lock(system_.mutex_);
        note("reach");
        if (system_.isUnreachable) {
            fail(std::errc::permission_denied, "Putting the file back");
        }
    }

    void takeName(const std::filesystem::path& path) override {
        const std::string to = path.filename().string();
        system_.log_.add(path_.empty() ? "name " + to
                                       : "move " + path_.filename().string() + " " + to);
        throwIfSet(system_.moveError);
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
    [[noreturn]] static void fail(std::errc code, const char* action) {
        throw std::system_error(std::make_error_code(code), action);
    }

    void note(const char* action) { file_->journal.emplace_back(action); }

    MemoryFileSystem& system_;
    std::shared_ptr<MemoryFile> file_;
    std::filesystem::path path_;
};

std::unique_ptr<OutputFile> MemoryFileSystem::outputFile(std::shared_ptr<MemoryFile> file,
                                                         const std::filesystem::path& path) {
    return std::make_unique<MemoryOutputFile>(*this, std::move(file), path);
}

} // namespace vantoro::testing
