// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/tags.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <system_error>

#include "media/boxes/marks.h"

namespace vantoro::media {

namespace {

constexpr char titleTag[] = "\xA9nam";
constexpr char dateTag[] = "\xA9"
                           "day";
constexpr char programTag[] = "\xA9too";

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;

void writeTag(BoxWriter& out, std::string_view name, std::string_view text) {
    constexpr std::uint32_t isUtf8 = 1;
    if (text.empty()) {
        return;
    }
    out.box(name, [&] {
        out.fullBox("data", isUtf8, [&] {
            out.u32(0); // any country and language
            out.text(text);
        });
    });
}

/// The content of the innermost of nested boxes.
std::optional<ByteSpan> find(std::optional<ByteSpan> content,
                             std::initializer_list<std::uint32_t> path) {
    for (const std::uint32_t type : path) {
        content = content ? findBox(*content, type) : std::nullopt;
    }
    return content;
}

std::string readTag(ByteSpan list, std::uint32_t type) {
    const auto data = find(list, {type, boxType("data")});
    if (!data) {
        return {};
    }
    ByteReader fields(*data);
    fields.skip(8); // kind of data, country and language
    const auto text = fields.rest();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

/// Reads numbers of a fixed width and the characters between them.
class DateReader {
public:
    explicit DateReader(std::string_view text) : rest_(text) {}

    int number(std::size_t digits) {
        int value = 0;
        const auto end = rest_.data() + std::min(digits, rest_.size());
        const auto [stop, error] = std::from_chars(rest_.data(), end, value);
        isValid_ = isValid_ && error == std::errc() && value >= 0 && stop == rest_.data() + digits;
        rest_.remove_prefix(std::min(digits, rest_.size()));
        return value;
    }

    /// Which of the characters comes next.
    char oneOf(std::string_view characters) {
        const char found = rest_.empty() ? '\0' : rest_.front();
        isValid_ = isValid_ && found != '\0' && characters.find(found) != std::string_view::npos;
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return found;
    }

    bool isAtValidEnd() const { return isValid_ && rest_.empty(); }

private:
    std::string_view rest_;
    bool isValid_ = true;
};

} // namespace

std::uint64_t boxTime(const std::optional<WallTime>& time) noexcept {
    constexpr std::int64_t secondsFrom1904To1970 = 2'082'844'800;
    const std::int64_t seconds = time ? time->seconds + secondsFrom1904To1970 : 0;
    return seconds < 0 ? 0 : static_cast<std::uint64_t>(seconds);
}

std::string dateText(const WallTime& time) {
    using namespace std::chrono;
    const sys_seconds local(seconds(time.seconds + time.utcOffset));
    const year_month_day date(floor<days>(local));
    const hh_mm_ss clock(local - floor<days>(local));
    const int offset = std::abs(time.utcOffset);
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d%c%02d:%02d",
                      static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                      static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                      static_cast<int>(clock.minutes().count()),
                      static_cast<int>(clock.seconds().count()), time.utcOffset < 0 ? '-' : '+',
                      offset / secondsPerHour, offset % secondsPerHour / secondsPerMinute);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<WallTime> timeOf(const std::string& dateText) {
    using namespace std::chrono;
    DateReader text(dateText);
    const int year = text.number(4);
    text.oneOf("-");
    const int month = text.number(2);
    text.oneOf("-");
    const int day = text.number(2);
    text.oneOf("T");
    const int hour = text.number(2);
    text.oneOf(":");
    const int minute = text.number(2);
    text.oneOf(":");
    const int second = text.number(2);
    const int sign = text.oneOf("+-") == '-' ? -1 : 1;
    const int offsetHours = text.number(2);
    text.oneOf(":");
    const int offset = sign * (offsetHours * secondsPerHour + text.number(2) * secondsPerMinute);
    const year_month_day date{std::chrono::year(year),
                              std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day))};
    if (!text.isAtValidEnd() || !date.ok()) {
        return std::nullopt;
    }
    const auto local = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
    return WallTime{.seconds = local.time_since_epoch().count() - offset, .utcOffset = offset};
}

void writeTags(BoxWriter& out, const RecordingTags& tags) {
    out.box("udta", [&] {
        out.fullBox("meta", 0, [&] {
            out.fullBox("hdlr", 0, [&] {
                out.u32(0);
                out.text("mdirappl");
                out.zeros(9);
            });
            out.box("ilst", [&] {
                writeTag(out, titleTag, tags.title);
                writeTag(out, dateTag, tags.start ? dateText(*tags.start) : std::string());
                writeTag(out, programTag, "Vantoro " VANTORO_VERSION);
            });
        });
        writeChapters(out, tags.marks);
    });
}

RecordingTags readTags(ByteSpan header) {
    try {
        const auto meta = find(header, {boxType("udta"), boxType("meta")});
        if (!meta || meta->size() < 4) {
            return {};
        }
        constexpr std::size_t versionAndFlags = 4;
        const auto list = find(meta->subspan(versionAndFlags), {boxType("ilst")});
        if (!list) {
            return {};
        }
        return {.start = timeOf(readTag(*list, boxType(dateTag))),
                .title = readTag(*list, boxType(titleTag)),
                .marks = {}};
    } catch (const DamagedMovie&) {
        return {};
    }
}

} // namespace vantoro::media
