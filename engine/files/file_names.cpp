// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/files/file_names.h"

#include <array>
#include <cstdint>
#include <ctime>
#include <random>

namespace vantoro {

namespace {

std::string randomUUID() {
    std::random_device random;
    std::array<std::uint8_t, 16> bytes{};
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random() & 0xFFU);
    }
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U); // version 4: random
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        constexpr const char* digits = "0123456789ABCDEF";
        text += digits[bytes.at(i) >> 4U];
        text += digits[bytes.at(i) & 0x0FU];
    }
    return text;
}

std::string timeStamp(const std::tm& time) {
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d-%H%M%S", &time);
    return {text.data(), length};
}

} // namespace

std::string temporaryFileName() {
    return ".Vantoro-" + randomUUID() + ".partial.mov";
}

OutputPlace uniqueOutputURL(const std::filesystem::path& folder, FileSystem& fileSystem,
                            const Clock& clock) {
    return {fileSystem, folder, "Vantoro-" + timeStamp(clock.localTime())};
}

} // namespace vantoro
