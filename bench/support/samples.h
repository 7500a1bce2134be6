// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <fstream>
#include <span>
#include <stdexcept>
#include <vector>

namespace vantoro::bench {

/// Reads a file of 32-bit float samples.
inline std::vector<float> readSamples(const std::filesystem::path& path) {
    std::vector<float> samples(std::filesystem::file_size(path) / sizeof(float));
    std::ifstream file(path, std::ios::binary);
    const auto bytes = std::as_writable_bytes(std::span(samples));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) {
        throw std::runtime_error("the sound cannot be read");
    }
    return samples;
}

} // namespace vantoro::bench
