// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/movie_writer.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "media/codec/aac.h"
#include "media/mix/recorded_movie.h"

namespace vantoro::media {

class MovieWriter::Track final : public RecordingTrack {
public:
    Track(MovieWriter& writer, std::size_t number, TrackFormat format)
        : index(number),
          encoder(writer.codec_, format.channels, format.bitRate,
                  [&writer, number](AacPacket packet) {
                      writer.muxer_.add(number, std::move(packet));
                  }),
          writer_(writer) {}

    bool isReady() const override { return writer_.isReady(); }

    bool append(const SampleBuffer& buffer) override { return writer_.append(*this, buffer); }

    void end() override { writer_.end(*this); }

    const std::size_t index; // in the file
    TrackEncoder encoder;
    bool hasEnded = false;

private:
    MovieWriter& writer_;
};

MovieWriter::MovieWriter(const AacCodec& codec, FileSystem& fileSystem,
                         std::filesystem::path location, const FragmentIntervals& intervals,
                         FragmentWrittenCallback onFragmentWritten, IsPowerSaved isPowerSaved,
                         std::size_t maxBacklog)
    : codec_(codec),
      fileSystem_(fileSystem),
      location_(std::move(location)),
      maxBacklog_(maxBacklog),
      isPowerSaved_(std::move(isPowerSaved)),
      onFragmentWritten_(std::move(onFragmentWritten)),
      schedule_(intervals.first.inUnitsOf(framesPerSecond),
                intervals.others.inUnitsOf(framesPerSecond)),
      created_(fileSystem.create(location_, FileAudience::userOnly)) {}

MovieWriter::~MovieWriter() = default;

RecordingTrack* MovieWriter::addTrack(TrackFormat format) {
    const bool canBeEncoded =
        codec_.hasEncoder() && format.bitRate > 0 && (format.channels == 1 || format.channels == 2);
    if (!canBeEncoded || status() != WriterStatus::unknown) {
        return nullptr;
    }
    tracks_.push_back(std::make_unique<Track>(*this, tracks_.size(), format));
    muxer_.addTrack(tracks_.back()->encoder.track());
    return tracks_.back().get();
}

bool MovieWriter::start(MediaTime time) {
    return attempt([&] {
        if (tracks_.empty()) {
            throw std::runtime_error("The movie has no tracks.");
        }
        try {
            mix_ = std::make_shared<FollowingMix>(codec_, fileSystem_, location_, isPowerSaved_);
        } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch)
            // Without its thread, the mix is made at the end.
        }
        expectMix(std::move(expectedVolumes_));
        file_ = std::make_unique<FragmentFile>(
            std::move(created_), [this](std::exception_ptr error) { fail(std::move(error)); },
            [this](std::size_t backlog) { fragmentWritten(backlog); });
        sessionStart_ = time.inUnitsOf(framesPerSecond);
        for (RecordingMark& mark : std::exchange(marks_, {})) {
            addMark(mark.time, std::move(mark.text));
        }
        const std::lock_guard lock(mutex_);
        status_ = WriterStatus::writing;
    });
}

bool MovieWriter::isReady() const {
    // A failed writer is ready, so that `append` can report the failure.
    return !file_ || file_->backlog() <= maxBacklog_ || status() != WriterStatus::writing;
}

bool MovieWriter::append(Track& track, const SampleBuffer& buffer) {
    if (status() != WriterStatus::writing || track.hasEnded) {
        return false;
    }
    return attempt([&] {
        const std::int64_t time =
            buffer.presentationTime.inUnitsOf(framesPerSecond) - sessionStart_;
        track.encoder.append(buffer, time);
        closeFragments();
    });
}

void MovieWriter::end(Track& track) {
    if (!file_ || track.hasEnded) {
        return;
    }
    attempt([&] {
        if (track.encoder.position() == 0) {
            // A track without any sound is silent, not missing.
            track.encoder.fillTo(longestTrack());
        }
        track.hasEnded = true;
        if (track.encoder.position() > 0) {
            track.encoder.finish();
        }
        closeFragments();
    });
}

void MovieWriter::addMark(MediaTime time, std::string text) {
    if (!file_) {
        marks_.push_back({.time = time, .text = std::move(text)});
        return;
    }
    const std::int64_t frame = time.inUnitsOf(framesPerSecond) - sessionStart_;
    muxer_.addMark(
        {.time = {.value = std::max<std::int64_t>(frame, 0), .timescale = framesPerSecond},
         .text = std::move(text)});
}

void MovieWriter::finish(std::function<void()> completion) {
    if (!file_) {
        fail(std::make_exception_ptr(std::logic_error("Nothing was written.")));
        completion();
        return;
    }
    for (const auto& track : tracks_) {
        end(*track);
    }
    attempt([this] {
        if (longestTrack() > 0) {
            if (muxer_.hasContent()) {
                file_->append(muxer_.closeFragment(std::numeric_limits<std::int64_t>::max()),
                              longestTrack());
            }
            file_->append(muxer_.finish(), longestTrack());
        }
    });
    file_->finish([this, frames = longestTrack(),
                   completion = std::move(completion)](const std::exception_ptr& failure) {
        conclude(failure, std::max<std::int64_t>(frames - file_->framesOnDisk(), 0));
        completion();
    });
}

/// On the file thread.
void MovieWriter::conclude(const std::exception_ptr& failure, std::int64_t framesMissing) {
    const std::lock_guard lock(mutex_);
    status_ = failure ? WriterStatus::failed : WriterStatus::completed;
    error_ = failure;
    secondsNotWritten_ = static_cast<double>(framesMissing) / framesPerSecond;
    if (!failure && framesMissing > 0) {
        error_ = file_->latestFailure();
    }
}

double MovieWriter::secondsNotWritten() const {
    const std::lock_guard lock(mutex_);
    return secondsNotWritten_;
}

void MovieWriter::expectMix(std::vector<float> volumes) {
    expectedVolumes_ = std::move(volumes);
    if (mix_) {
        mix_->expect(expectedVolumes_);
    }
}

std::unique_ptr<Recording> MovieWriter::openRecording() {
    return std::make_unique<RecordedMovie>(codec_, fileSystem_, location_, mix_);
}

WriterStatus MovieWriter::status() const {
    const std::lock_guard lock(mutex_);
    return status_;
}

std::exception_ptr MovieWriter::error() const {
    const std::lock_guard lock(mutex_);
    return error_;
}

bool MovieWriter::attempt(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception&) {
        fail(std::current_exception());
        return false;
    }
}

void MovieWriter::fail(std::exception_ptr error) {
    const std::lock_guard lock(mutex_);
    status_ = WriterStatus::failed;
    error_ = std::move(error);
}

/// On the file thread.
void MovieWriter::fragmentWritten(std::size_t backlog) {
    if (mix_) {
        mix_->fragmentWritten();
    }
    if (onFragmentWritten_) {
        onFragmentWritten_({closedFrames_, framesPerSecond}, backlog);
    }
}

void MovieWriter::closeFragments() {
    for (prepareFragment(); coversFragment(); prepareFragment()) {
        closedFrames_ = schedule_.end();
        file_->append(muxer_.closeFragment(schedule_.end()), schedule_.end());
        schedule_.advance();
    }
}

void MovieWriter::prepareFragment() {
    fillShortTracks();
    for (const auto& track : tracks_) {
        // A waiting batch would delay the fragment.
        if (!track->hasEnded && !reachesFragmentEnd(*track) &&
            track->encoder.position() >= schedule_.framesToClose()) {
            track->encoder.encodeWholePackets();
        }
    }
}

void MovieWriter::fillShortTracks() {
    std::vector<std::int64_t> positions;
    for (const auto& track : tracks_) {
        if (!track->hasEnded) {
            positions.push_back(track->encoder.position());
        }
    }
    if (!schedule_.isHeldBack(positions)) {
        return;
    }
    for (const auto& track : tracks_) {
        if (!track->hasEnded) {
            track->encoder.fillTo(schedule_.framesToClose());
        }
    }
}

/// Whether all active tracks reach the fragment's end, and any track does.
bool MovieWriter::coversFragment() const {
    const auto covers = [this](const auto& track) { return reachesFragmentEnd(*track); };
    return std::ranges::any_of(tracks_, covers) &&
           std::ranges::all_of(tracks_,
                               [&](const auto& track) { return track->hasEnded || covers(track); });
}

bool MovieWriter::reachesFragmentEnd(const Track& track) const {
    return muxer_.end(track.index) >= schedule_.end();
}

std::int64_t MovieWriter::longestTrack() const {
    std::int64_t longest = 0;
    for (const auto& track : tracks_) {
        longest = std::max(longest, track->encoder.position());
    }
    return longest;
}

} // namespace vantoro::media
