// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vantoro::testing {

/// A temporary folder on the real disk, removed with its content.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "vantoro-test-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made");
        }
        path_ = name;
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    /// Writes a file there, for programs that cannot read this process's memory.
    std::filesystem::path put(const std::string& name, std::span<const std::byte> content) const {
        const std::filesystem::path place = path_ / name;
        std::ofstream file(place, std::ios::binary);
        for (const std::byte byte : content) {
            file.put(static_cast<char>(byte));
        }
        file.close();
        if (!file) {
            throw std::runtime_error("cannot write " + place.string());
        }
        return place;
    }

private:
    std::filesystem::path path_;
};

} // namespace vantoro::testing
