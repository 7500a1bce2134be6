// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/marks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

// Distinguishes our box from others of type "uuid".
constexpr std::array<std::uint8_t, 16> markIdentifier{
    0x2E, 0x91, 0xC4, 0x6D, 0x0B, 0xF8, 0x47, 0x1A, 0xB3, 0x5C, 0x70, 0xE2, 0xD9, 0x36, 0x8F, 0x04};
constexpr std::size_t maxTitleSize = 255;
constexpr std::size_t maxChapters = 255;

} // namespace

std::string chapterTitle(std::string text) {
    if (text.size() > maxTitleSize) {
        const auto continuesCharacter = [&](std::size_t place) {
            return (static_cast<unsigned char>(text[place]) & 0xC0U) == 0x80U;
        };
        std::size_t size = maxTitleSize;
        while (size > 0 && continuesCharacter(size)) {
            --size;
        }
        text.resize(size);
    }
    return text;
}

void writeMarks(BoxWriter& out, std::span<const RecordingMark> marks) {
    if (marks.empty()) {
        return;
    }
    out.box("uuid", [&] {
        out.bytes(std::as_bytes(std::span(markIdentifier)));
        for (const auto& [time, text] : marks) {
            const auto title = chapterTitle(text);
            out.u64(static_cast<std::uint64_t>(
                std::max<std::int64_t>(time.inUnitsOf(framesPerSecond), 0)));
            out.u8(title.size());
            out.text(title);
        }
    });
}

std::vector<RecordingMark> readMarks(ByteSpan content) {
    ByteReader fields(content);
    if (content.size() < markIdentifier.size() ||
        !std::ranges::equal(fields.take(markIdentifier.size()),
                            std::as_bytes(std::span(markIdentifier)))) {
        return {};
    }
    std::vector<RecordingMark> marks;
    while (!fields.rest().empty()) {
        constexpr std::uint64_t latest = std::uint64_t{1} << 48U;
        const auto frame = static_cast<std::int64_t>(std::min(fields.u64(), latest));
        const auto text = fields.take(fields.u8());
        marks.push_back({.time = {.value = frame, .timescale = framesPerSecond},
                         .text = {reinterpret_cast<const char*>(text.data()), text.size()}});
    }
    return marks;
}

void writeChapters(BoxWriter& out, std::span<const RecordingMark> marks) {
    constexpr int unitsPerSecond = 10'000'000;
    if (marks.empty()) {
        return;
    }
    std::vector<RecordingMark> chapters(marks.begin(), marks.end());
    std::ranges::stable_sort(
        chapters, [](const RecordingMark& a, const RecordingMark& b) { return a.time < b.time; });
    chapters.resize(std::min(chapters.size(), maxChapters));
    out.fullBox("chpl", 1U << 24U, [&] {
        out.u32(0);
        out.u8(chapters.size());
        for (const auto& [time, text] : chapters) {
            const auto title = chapterTitle(text);
            out.u64(static_cast<std::uint64_t>(time.inUnitsOf(unitsPerSecond)));
            out.u8(title.size());
            out.text(title);
        }
    });
}

} // namespace vantoro::media
