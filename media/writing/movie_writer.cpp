// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/movie_writer.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <stdexcept>
#include <utility>

#include "media/coding/aac.h"

namespace vantoro::media {

class MovieWriter::Input final : public FileWriterInput {
public:
    Input(MovieWriter& writer, std::size_t index, const AudioTrackSettings& settings)
        : writer_(writer),
          index_(index),
          encoder_(writer.coding_, settings.channels, settings.bitRate) {}

    bool isReadyForMoreMediaData() const override { return writer_.isReady(); }

    bool append(const SampleBuffer& buffer) override { return writer_.append(*this, buffer); }

    void markAsFinished() override { writer_.end(*this); }

    std::size_t index() const noexcept { return index_; }

    TrackEncoder& encoder() noexcept { return encoder_; }

    bool hasEnded() const noexcept { return ended_; }

    void setEnded() noexcept { ended_ = true; }

private:
    MovieWriter& writer_;
    const std::size_t index_; // the track's place in the file
    TrackEncoder encoder_;
    bool ended_ = false;
};

MovieWriter::MovieWriter(const Coding& coding, FileSystem& fileSystem,
                         std::filesystem::path location, std::shared_ptr<FollowingMixes> following,
                         std::size_t largestBacklog)
    : coding_(coding),
      fileSystem_(fileSystem),
      location_(std::move(location)),
      largestBacklog_(largestBacklog),
      following_(std::move(following)),
      created_(fileSystem.create(location_, FileAudience::userOnly)) {}

MovieWriter::~MovieWriter() = default;

void MovieWriter::setMovieFragmentInterval(MediaTime interval) {
    interval_ = interval;
}

void MovieWriter::setInitialMovieFragmentInterval(MediaTime interval) {
    initialInterval_ = interval;
}

void MovieWriter::setOnFragmentWritten(FragmentWrittenCallback callback) {
    onFragmentWritten_ = std::move(callback);
}

bool MovieWriter::canAdd(const AudioTrackSettings& settings) const {
    return status() == FileWriterStatus::unknown && coding_.hasCoder() &&
           settings.sampleRate == framesPerSecond && settings.bitRate > 0 &&
           (settings.channels == 1 || settings.channels == 2);
}

FileWriterInput& MovieWriter::add(const AudioTrackSettings& settings) {
    inputs_.push_back(std::make_unique<Input>(*this, inputs_.size(), settings));
    muxer_.addTrack(inputs_.back()->encoder().track());
    return *inputs_.back();
}

bool MovieWriter::startWriting() {
    return attempt([this] {
        if (inputs_.empty()) {
            throw std::runtime_error("The movie has no tracks.");
        }
        schedule_ = FragmentSchedule(initialInterval_.inUnitsOf(framesPerSecond),
                                     interval_.inUnitsOf(framesPerSecond));
        mix_ = following_->begin(fileSystem_, location_);
        expectMix(std::move(expectedVolumes_));
        file_ = std::make_unique<FragmentFile>(
            std::move(created_), [this](const std::string& description) { fail(description); },
            [this](std::size_t backlog) { fragmentWritten(backlog); });
        const std::lock_guard lock(mutex_);
        status_ = FileWriterStatus::writing;
    });
}

void MovieWriter::startSession(MediaTime sourceTime) {
    sessionStart_ = sourceTime;
}

bool MovieWriter::isReady() const {
    // A failed writer takes the buffer, in order to say that it failed.
    return !file_ || file_->backlog() <= largestBacklog_ || status() != FileWriterStatus::writing;
}

bool MovieWriter::append(Input& input, const SampleBuffer& buffer) {
    if (status() != FileWriterStatus::writing || input.hasEnded()) {
        return false;
    }
    return attempt([&] {
        const std::int64_t time = buffer.presentationTime.inUnitsOf(framesPerSecond) -
                                  sessionStart_.inUnitsOf(framesPerSecond);
        input.encoder().append(buffer, time, sinkOf(input));
        closeFragments();
    });
}

void MovieWriter::end(Input& input) {
    if (!file_ || input.hasEnded()) {
        return;
    }
    attempt([&] {
        const PacketSink sink = sinkOf(input);
        if (input.encoder().position() == 0) {
            // A track that no sound ever came for is silent, not missing.
            input.encoder().fillTo(longestTrack(), sink);
        }
        input.setEnded();
        if (input.encoder().position() > 0) {
            input.encoder().finish(sink);
        }
        closeFragments();
    });
}

void MovieWriter::finishWriting(std::function<void()> completion) {
    if (!file_) {
        fail("Nothing was written.");
        completion();
        return;
    }
    for (const auto& input : inputs_) {
        end(*input);
    }
    attempt([this] {
        if (longestTrack() > 0) {
            if (muxer_.hasPackets()) {
                file_->append(muxer_.closeFragment(std::numeric_limits<std::int64_t>::max()),
                              longestTrack());
            }
            file_->append(muxer_.finish(), longestTrack());
        }
    });
    file_->finish([this, frames = longestTrack(),
                   completion = std::move(completion)](const std::optional<std::string>& failure) {
        conclude(failure, std::max<std::int64_t>(frames - file_->framesOnDisk(), 0));
        completion();
    });
}

/// On the file thread.
void MovieWriter::conclude(const std::optional<std::string>& failure, std::int64_t framesMissing) {
    const std::lock_guard lock(mutex_);
    status_ = failure ? FileWriterStatus::failed : FileWriterStatus::completed;
    errorDescription_ = failure;
    secondsNotWritten_ = static_cast<double>(framesMissing) / framesPerSecond;
    if (!failure && framesMissing > 0) {
        errorDescription_ = file_->latestFailure();
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

FileWriterStatus MovieWriter::status() const {
    const std::lock_guard lock(mutex_);
    return status_;
}

std::optional<std::string> MovieWriter::errorDescription() const {
    const std::lock_guard lock(mutex_);
    return errorDescription_;
}

bool MovieWriter::attempt(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const std::exception& error) {
        fail(error.what());
        return false;
    }
}

void MovieWriter::fail(const std::string& description) {
    const std::lock_guard lock(mutex_);
    status_ = FileWriterStatus::failed;
    errorDescription_ = description;
}

/// On the file thread.
void MovieWriter::fragmentWritten(std::size_t backlog) {
    if (mix_) {
        mix_->movieHasGrown();
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
    for (const auto& input : inputs_) {
        // What waits to be coded together would hold the fragment back.
        if (!input->hasEnded() && !reachesFragmentEnd(*input) &&
            input->encoder().position() >= schedule_.framesToClose()) {
            input->encoder().codeWholePackets(sinkOf(*input));
        }
    }
}

void MovieWriter::fillShortTracks() {
    std::vector<std::int64_t> positions;
    for (const auto& input : inputs_) {
        if (!input->hasEnded()) {
            positions.push_back(input->encoder().position());
        }
    }
    if (!schedule_.isHeldBack(positions)) {
        return;
    }
    for (const auto& input : inputs_) {
        if (!input->hasEnded()) {
            input->encoder().fillTo(schedule_.framesToClose(), sinkOf(*input));
        }
    }
}

/// Whether no track has anything left to add to the fragment, and one goes beyond it.
bool MovieWriter::coversFragment() const {
    const auto covers = [this](const auto& input) { return reachesFragmentEnd(*input); };
    return std::ranges::any_of(inputs_, covers) &&
           std::ranges::all_of(
               inputs_, [&](const auto& input) { return input->hasEnded() || covers(input); });
}

/// Whether the packets that a track has handed over do.
bool MovieWriter::reachesFragmentEnd(const Input& input) const {
    return muxer_.end(input.index()) >= schedule_.end();
}

std::int64_t MovieWriter::longestTrack() const {
    std::int64_t longest = 0;
    for (const auto& input : inputs_) {
        longest = std::max(longest, input->encoder().position());
    }
    return longest;
}

PacketSink MovieWriter::sinkOf(const Input& input) {
    return
        [this, index = input.index()](AacPacket packet) { muxer_.add(index, std::move(packet)); };
}

} // namespace vantoro::media
