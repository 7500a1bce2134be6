#include "platform/ffmpeg/mixing_export.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/aac_encoder.h"
#include "platform/ffmpeg/m4a_file.h"
#include "platform/ffmpeg/packet_copy.h"
#include "platform/ffmpeg/track_samples.h"

namespace vantoro::ffmpeg {

namespace {

constexpr int exportChannels = 2;
constexpr int exportBitRate = 256000;

/// The tracks of a composition, summed at their volumes.
class Mixer {
public:
    void add(const MovieCompositionTrack& track, float volume) {
        if (track.source() == nullptr) {
            return;
        }
        tracks_.push_back({TrackSamples(*track.source(), track.start(), track.frames()), volume});
        frames_ = std::max(frames_, track.frames());
    }

    /// Of the longest track.
    std::int64_t frames() const noexcept { return frames_; }

    /// The next 1024 frames; silence where a track has ended.
    void read(const StereoBlock& block) {
        for (const auto plane : {block.left, block.right}) {
            std::ranges::fill(plane, 0.0F);
        }
        for (Track& track : tracks_) {
            track.samples.addTo(block, track.volume);
        }
        for (const auto plane : {block.left, block.right}) {
            // Beyond full scale decoders differ: some wrap around, which crackles.
            for (float& sample : plane) {
                sample = std::clamp(sample, -1.0F, 1.0F);
            }
        }
    }

private:
    struct Track {
        TrackSamples samples;
        float volume;
    };

    std::vector<Track> tracks_;
    std::int64_t frames_ = 0;
};

M4aTrack describe(const AVCodecParameters& parameters, std::int64_t frames) {
    const auto configuration = std::as_bytes(
        std::span(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)));
    return {.channels = parameters.ch_layout.nb_channels,
            .bitRate = static_cast<int>(parameters.bit_rate),
            .coderConfiguration = {configuration.begin(), configuration.end()},
            .frames = frames};
}

void code(Mixer& mixer, AacEncoder& coder, const PacketSink& sink, const ExportProgress& progress) {
    constexpr std::int64_t progressInterval = 60LL * framesPerSecond;
    const std::int64_t frames = mixer.frames();
    std::int64_t nextProgress = 0;
    for (std::int64_t done = 0; done < frames; done += packetFrames) {
        if (progress && done >= nextProgress) {
            progress(static_cast<double>(done) / static_cast<double>(frames));
            nextProgress = done + std::min(progressInterval, frames / 100);
        }
        mixer.read({.left = coder.plane(0).first<packetFrames>(),
                    .right = coder.plane(1).first<packetFrames>()});
        coder.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, frames - done)), sink);
    }
    coder.finish(sink);
}

} // namespace

void MixingExport::setAudioMix(AudioMix mix) {
    for (const AudioMixInput& input : mix) {
        if (!std::isfinite(input.volume) || input.time != zeroTime) {
            throw std::invalid_argument("A track cannot have this volume.");
        }
    }
    mix_ = std::move(mix);
}

void MixingExport::exportTo(const std::filesystem::path& destination,
                            const ExportProgress& progress) {
    if (const MovieCompositionTrack* const track = unchangedTrack()) {
        copy(*track, destination, progress);
    } else {
        mix(destination, progress);
    }
    if (progress) {
        progress(1.0);
    }
}

/// The only track there is, when coding it again would change nothing but its quality.
const MovieCompositionTrack* MixingExport::unchangedTrack() const {
    const MovieCompositionTrack* only = nullptr;
    for (const auto& track : composition_.tracks()) {
        if (track->source() != nullptr && track->frames() > 0) {
            if (only != nullptr) {
                return nullptr;
            }
            only = track.get();
        }
    }
    const bool isUnchanged = only != nullptr && only->start() == 0 && volumeOf(*only) == 1.0F &&
                             isIntact(*only->source()->movie());
    return isUnchanged ? only : nullptr;
}

void MixingExport::copy(const MovieCompositionTrack& track,
                        const std::filesystem::path& destination, const ExportProgress& progress) {
    const MovieTrack& source = *track.source();
    M4aFile file(fileSystem_.create(destination, FileAudience::asUserPrefers),
                 describe(*source.movie()->codecs[source.index()], track.frames()));
    copyPackets(source, track.frames(), file, progress);
    file.finish();
}

void MixingExport::mix(const std::filesystem::path& destination, const ExportProgress& progress) {
    Mixer mixer;
    for (const auto& track : composition_.tracks()) {
        mixer.add(*track, volumeOf(*track));
    }
    if (mixer.frames() == 0) {
        throw std::runtime_error("There is no sound to export.");
    }
    AacEncoder coder(exportChannels, exportBitRate);
    M4aFile file(fileSystem_.create(destination, FileAudience::asUserPrefers),
                 describe(coder.parameters(), mixer.frames()));
    code(
        mixer, coder,
        [&](const AVPacket& packet) {
            file.add(std::as_bytes(std::span(packet.data, static_cast<std::size_t>(packet.size))));
        },
        progress);
    file.finish();
}

float MixingExport::volumeOf(const CompositionTrack& track) const noexcept {
    const auto input = std::ranges::find(mix_, &track, &AudioMixInput::track);
    return input == mix_.end() ? 1.0F : input->volume;
}

} // namespace vantoro::ffmpeg
