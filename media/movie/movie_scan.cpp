// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie_scan.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_search.h"
#include "media/boxes/tags.h"
#include "media/codec/aac.h"
#include "media/movie/fragment_checksum.h"
#include "media/movie/fragment_parser.h"

namespace vantoro::media {

namespace {

constexpr std::uint64_t maxHeaderSize = 1U << 20U;
constexpr int maxBoxesBeforeFragments = 16;
constexpr std::size_t maxFragments = 1U << 20U; // 120 days

/// Finds the header among the file's first boxes.
FileBox findHeader(const InputFile& file) {
    std::uint64_t offset = 0;
    for (int i = 0; i < maxBoxesBeforeFragments && offset < file.size(); ++i) {
        const FileBox box = readFileBox(file, offset);
        if (box.type == boxType("moov")) {
            return box;
        }
        offset = box.end;
    }
    throw DamagedMovie("it has no header");
}

/// The tracks' ends with one more fragment.
class Progress {
public:
    explicit Progress(const MovieScan& scan) : Progress(scan.ends, scan.ended) {}

    Progress(std::vector<std::int64_t> ends, std::vector<bool> ended)
        : starts_(ends), ends_(std::move(ends)), ended_(std::move(ended)) {}

    /// Throws unless each track continues where it ended, with gaps of at most `missingPackets` in
    /// all tracks together.
    void add(const Fragment& fragment, std::uint64_t missingPackets) {
        std::size_t packets = 0;
        for (const TrackFragment& part : fragment.parts) {
            missingPackets -= gapBefore(part, missingPackets);
            add(part);
            packets += part.packets.size();
        }
        if (packets == 0) {
            throw DamagedMovie("a fragment is empty");
        }
    }

    void addTo(MovieScan& scan) && {
        scan.starts.insert(scan.starts.end(), starts_.begin(), starts_.end());
        scan.ends = std::move(ends_);
        scan.ended = std::move(ended_);
    }

private:
    /// The gap in packets.
    std::uint64_t gapBefore(const TrackFragment& part, std::uint64_t maxPackets) const {
        const auto end = static_cast<std::uint64_t>(ends_[part.track]);
        const std::uint64_t gap = part.start - end;
        if (part.start < end || gap % packetFrames != 0 || gap / packetFrames > maxPackets ||
            (gap > 0 && part.packets.empty())) {
            throw DamagedMovie("a fragment does not follow the one before");
        }
        return gap / packetFrames;
    }

    void add(const TrackFragment& part) {
        std::int64_t& end = ends_[part.track];
        end = static_cast<std::int64_t>(part.start);
        starts_[part.track] = end;
        for (const PacketPlace& packet : part.packets) {
            // Only a track's last packet may be short, so that packets can be found by number.
            if (ended_[part.track] || packet.duration > packetFrames) {
                throw DamagedMovie("a packet has an impossible duration");
            }
            ended_[part.track] = packet.duration < packetFrames;
            end += packet.duration;
        }
    }

    std::vector<std::int64_t> starts_;
    std::vector<std::int64_t> ends_;
    std::vector<bool> ended_;
};

/// Bounds the memory that a damaged file takes.
void addMarks(const std::vector<RecordingMark>& marks, std::vector<RecordingMark>& all) {
    constexpr std::size_t maxMarks = 255;
    const std::size_t count = std::min(marks.size(), maxMarks - std::min(maxMarks, all.size()));
    all.insert(all.end(), marks.begin(), marks.begin() + static_cast<std::ptrdiff_t>(count));
}

void addFragment(std::uint64_t offset, const Fragment& fragment, Progress progress,
                 MovieScan& scan) {
    std::move(progress).addTo(scan);
    scan.fragments.push_back(offset);
    addMarks(fragment.marks, scan.tags.marks);
    scan.skipped += offset - std::min(offset, scan.fragmentsEnd);
    scan.fragmentsEnd = fragment.end;
}

std::uint64_t packetsEnd(const Fragment& fragment) {
    std::uint64_t end = 0;
    for (const TrackFragment& part : fragment.parts) {
        if (!part.packets.empty()) {
            end = std::max(end, part.packets.back().offset + part.packets.back().size);
        }
    }
    return end;
}

/// Finds whole fragments after damage. A limit on the bytes read bounds the time, however many
/// fragments there seem to be: genuine fragments do not overlap and are read only once.
class DamageScan {
public:
    DamageScan(const InputFile& file, MovieScan& scan)
        : file_(file), scan_(scan), search_(file, "moof"), bytesLeft_(4 * file.size()) {}

    /// False if there is none within `reach`. Throws at the limit on the bytes read.
    bool addNextFragment(std::uint64_t reach) {
        // Its damaged header may give too large a size.
        doubtful_ = lastIfChecksumFails();
        const std::uint64_t begin = doubtful_ ? scan_.fragments.back() + 1 : scan_.fragmentsEnd;
        const std::uint64_t end = begin + std::min(reach, file_.size() - begin);
        for (auto place = search_.next(begin, end); place && bytesLeft_ > 0;
             place = search_.next(*place + 1, end)) {
            if (addIfWhole(*place)) {
                return true;
            }
        }
        return false;
    }

private:
    // The encoder's shortest packet: silence in one channel.
    static constexpr std::uint64_t minPacketSize = 4;

    std::optional<Fragment> lastIfChecksumFails() {
        if (scan_.fragments.empty()) {
            return std::nullopt;
        }
        const std::uint64_t offset = scan_.fragments.back();
        Fragment last = readFragment(file_, offset, scan_.tracks);
        return checksumMatches(offset, last) ? std::nullopt : std::optional(std::move(last));
    }

    bool addIfWhole(std::uint64_t offset) {
        try {
            const FileBox description = readFileBox(file_, offset);
            countRead(std::min(description.end - offset, maxDescriptionSize));
            const Fragment fragment = readFragment(file_, offset, scan_.tracks);
            if (!checksumMatches(offset, fragment)) {
                return false; // its time stamps may be wrong
            }
            try {
                add(offset, fragment);
            } catch (const DamagedMovie&) {
                replaceDoubtful(offset, fragment);
            }
            return true;
        } catch (const DamagedMovie&) {
            return false;
        }
    }

    bool checksumMatches(std::uint64_t offset, const Fragment& fragment) {
        if (!fragment.checksum) {
            return false;
        }
        countRead(fragment.contentEnd - offset);
        return fragment.checksum == checksumOf(file_, offset, fragment.contentEnd);
    }

    void add(std::uint64_t offset, const Fragment& fragment) {
        if (doubtful_ && offset < packetsEnd(*doubtful_)) {
            throw DamagedMovie("its fragments overlap");
        }
        const std::uint64_t skipped = offset - std::min(offset, scan_.fragmentsEnd);
        Progress progress(scan_);
        progress.add(fragment, skipped / minPacketSize);
        addFragment(offset, fragment, std::move(progress), scan_);
    }

    /// Replaces the last fragment, whose damaged description has a wrong length, with this one.
    void replaceDoubtful(std::uint64_t offset, const Fragment& fragment) {
        if (!doubtful_) {
            throw DamagedMovie("a fragment does not follow the one before");
        }
        const std::uint64_t last = scan_.fragments.back();
        const auto starts = scan_.startsOf(scan_.fragments.size() - 1);
        std::vector<bool> ended = scan_.ended;
        for (std::size_t track = 0; track < ended.size(); ++track) {
            ended[track] = ended[track] && scan_.ends[track] == starts[track];
        }
        Progress progress({starts.begin(), starts.end()}, std::move(ended));
        progress.add(fragment, (offset - last) / minPacketSize);
        scan_.fragments.pop_back();
        scan_.starts.resize(scan_.starts.size() - scan_.tracks.size());
        scan_.fragmentsEnd = last;
        addFragment(offset, fragment, std::move(progress), scan_);
    }

    void countRead(std::uint64_t bytes) {
        if (bytes > bytesLeft_) {
            bytesLeft_ = 0;
            throw DamagedMovie("its fragments overlap");
        }
        bytesLeft_ -= bytes;
    }

    const InputFile& file_;
    MovieScan& scan_;
    BoxSearch search_;
    std::uint64_t bytesLeft_;          // limit on reads of possible fragments
    std::optional<Fragment> doubtful_; // the last one, if its checksum does not match
};

} // namespace

MovieScan scanMovie(const InputFile& file) {
    const FileBox header = findHeader(file);
    if (header.end - header.content > maxHeaderSize) {
        throw DamagedMovie("its header is too large");
    }
    std::vector<std::byte> bytes(header.end - header.content);
    readExactly(file, header.content, bytes);

    MovieScan scan;
    scan.tracks = parseHeader(bytes);
    scan.tags = readTags(bytes);
    scan.headerEnd = header.end;
    scan.fragmentsEnd = header.end;
    scan.ends.resize(scan.tracks.size());
    scan.ended.resize(scan.tracks.size());
    continueScan(file, scan);
    return scan;
}

void continueScan(const InputFile& file, MovieScan& scan) {
    try {
        while (scan.fragmentsEnd < file.size() && scan.fragments.size() < maxFragments) {
            const Fragment fragment = readFragment(file, scan.fragmentsEnd, scan.tracks);
            Progress progress(scan);
            progress.add(fragment, 0);
            addFragment(scan.fragmentsEnd, fragment, std::move(progress), scan);
        }
    } catch (const DamagedMovie&) { // NOLINT(bugprone-empty-catch)
        // The writer died here, or finished, or the file is damaged: keep what precedes.
    }
}

void scanAfterDamage(const InputFile& file, MovieScan& scan, std::uint64_t reach) {
    DamageScan damage(file, scan);
    try {
        while (scan.fragments.size() < maxFragments && !endsWithLastFragment(file, scan) &&
               damage.addNextFragment(reach)) {
            continueScan(file, scan);
        }
    } catch (const DamagedMovie&) { // NOLINT(bugprone-empty-catch)
        // Keep what was found.
    }
}

bool endsWithLastFragment(const InputFile& file, const MovieScan& scan) {
    std::array<std::byte, 8> header{};
    if (file.readAt(scan.fragmentsEnd, header) < header.size()) {
        return scan.fragmentsEnd >= file.size();
    }
    ByteReader fields(header);
    const std::uint64_t size = fields.u32();
    // The index may be cut off.
    return fields.u32() == boxType("mfra") && size >= file.size() - scan.fragmentsEnd;
}

} // namespace vantoro::media
