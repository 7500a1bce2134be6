// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/power_saving.h"
#include "engine/ports/recording_writer.h"
#include "media/mix/following_mix.h"
#include "media/writing/fragment_file.h"
#include "media/writing/fragment_muxer.h"
#include "media/writing/fragment_schedule.h"
#include "media/writing/track_encoder.h"

namespace vantoro::media {

/// Writes a fragmented QuickTime movie. Encodes and muxes the sound in memory on the capture queue,
/// and passes finished fragments to the file thread (`FragmentFile`). `finish` calls its completion
/// on the file thread, where it must not destroy the writer.
class MovieWriter final : public RecordingWriter {
public:
    /// In bytes: about 15 minutes of both tracks.
    static constexpr std::size_t defaultMaxBacklog = 32U << 20U;

    /// Creates the file; throws on failure. The tracks are not ready while more than `maxBacklog`
    /// bytes wait for the disk. An expected mix is made while recording.
    MovieWriter(const AacCodec& codec, FileSystem& fileSystem, std::filesystem::path location,
                const FragmentIntervals& intervals = {},
                FragmentWrittenCallback onFragmentWritten = {}, IsPowerSaved isPowerSaved = {},
                std::size_t maxBacklog = defaultMaxBacklog);
    MovieWriter(const MovieWriter&) = delete;
    MovieWriter& operator=(const MovieWriter&) = delete;
    ~MovieWriter() override;

    /// Also null after `start`.
    RecordingTrack* addTrack(TrackFormat format) override;

    void setTags(RecordingTags tags) override { muxer_.setTags(std::move(tags)); }

    bool start(MediaTime time) override;
    void addMark(MediaTime time, std::string text) override;
    void finish(std::function<void()> completion) override;
    void expectMix(std::vector<float> volumes) override;
    std::unique_ptr<Recording> openRecording() override;
    WriterStatus status() const override;
    std::exception_ptr error() const override;
    double secondsNotWritten() const override;

private:
    class Track;

    bool isReady() const;
    bool append(Track& track, const SampleBuffer& buffer);
    void end(Track& track);
    bool attempt(const std::function<void()>& work);
    void fail(std::exception_ptr error);
    void conclude(const std::exception_ptr& failure, std::int64_t framesMissing);
    void fragmentWritten(std::size_t backlog);
    void closeFragments();
    void prepareFragment();
    void fillShortTracks();
    bool coversFragment() const;
    bool reachesFragmentEnd(const Track& track) const;
    std::int64_t longestTrack() const;

    const AacCodec& codec_;
    FileSystem& fileSystem_;
    const std::filesystem::path location_;
    const std::size_t maxBacklog_;
    const IsPowerSaved isPowerSaved_;
    const FragmentWrittenCallback onFragmentWritten_;
    std::vector<float> expectedVolumes_;
    std::vector<RecordingMark> marks_;  // made before the start, at times of the session's clock
    std::shared_ptr<FollowingMix> mix_; // after `start`, if its thread can be started
    FragmentSchedule schedule_;
    std::atomic<std::int64_t> closedFrames_{0}; // end of the last closed fragment, written or not
    std::int64_t sessionStart_ = 0;             // in frames
    FragmentMuxer muxer_;
    std::vector<std::unique_ptr<Track>> tracks_;

    mutable std::mutex mutex_; // guards the next three, which the file thread sets too
    WriterStatus status_ = WriterStatus::unknown;
    std::exception_ptr error_;
    double secondsNotWritten_ = 0;

    std::unique_ptr<OutputFile> created_; // until writing starts
    std::unique_ptr<FragmentFile> file_;  // last, because its thread uses the above
};

} // namespace vantoro::media
