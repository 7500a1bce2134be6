// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/fake_media_toolkit.h"

#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace vantoro::testing {

namespace {

class FakeTrack final : public RecordingTrack {
public:
    FakeTrack(FakeMediaToolkit& toolkit, std::string name)
        : toolkit_(toolkit), name_(std::move(name)) {}

    bool isReady() const override { return toolkit_.writing.ready; }

    bool append(const SampleBuffer& buffer) override {
        toolkit_.log().add("append " + name_ + " " +
                           std::to_string(buffer.presentationTime.inUnitsOf(48000)));
        return toolkit_.writing.appendSucceeds;
    }

    void end() override { toolkit_.log().add("end " + name_); }

private:
    FakeMediaToolkit& toolkit_;
    std::string name_;
};

class FakeWriter final : public RecordingWriter {
public:
    FakeWriter(FakeMediaToolkit& toolkit, std::filesystem::path location)
        : toolkit_(toolkit), location_(std::move(location)) {}

    FakeWriter(const FakeWriter&) = delete;
    FakeWriter& operator=(const FakeWriter&) = delete;

    ~FakeWriter() override {
        if (finisher_.joinable()) {
            finisher_.join();
        }
    }

    RecordingTrack* addTrack(TrackFormat format) override {
        if (toolkit_.writing.refusedChannelCounts.contains(format.channels)) {
            return nullptr;
        }
        toolkit_.log().add("add " + std::to_string(format.channels) + " ch " +
                           std::to_string(format.bitRate) + " b/s");
        tracks_.push_back(
            std::make_unique<FakeTrack>(toolkit_, format.channels == 2 ? "system" : "microphone"));
        toolkit_.trackCount = tracks_.size();
        return tracks_.back().get();
    }

    void setTags(RecordingTags tags) override { toolkit_.tags = std::move(tags); }

    bool start(MediaTime time) override {
        toolkit_.log().add("start " + std::to_string(time.inUnitsOf(48000)));
        status_ = toolkit_.writing.startSucceeds ? WriterStatus::writing : WriterStatus::failed;
        return toolkit_.writing.startSucceeds;
    }

    void addMark(MediaTime time, std::string text) override {
        toolkit_.log().add("mark " + std::to_string(time.inUnitsOf(48000)) + " " + text);
    }

    void finish(std::function<void()> completion) override {
        toolkit_.log().add("finish");
        finisher_ = std::thread([this, completion = std::move(completion)] {
            status_ = toolkit_.writing.statusAfterFinish;
            completion();
        });
    }

    void expectMix(std::vector<float> volumes) override {
        std::string text = "expectMix";
        for (const float volume : volumes) {
            text += " " + std::to_string(volume).substr(0, 4);
        }
        toolkit_.log().add(text);
    }

    std::unique_ptr<Recording> openRecording() override {
        return toolkit_.openRecording(location_);
    }

    WriterStatus status() const override { return status_; }

    std::exception_ptr error() const override {
        const auto& error = toolkit_.writing.error;
        return error ? std::make_exception_ptr(std::runtime_error(*error)) : nullptr;
    }

    double secondsNotWritten() const override { return toolkit_.writing.secondsNotWritten; }

private:
    FakeMediaToolkit& toolkit_;
    std::filesystem::path location_;
    std::vector<std::unique_ptr<FakeTrack>> tracks_;
    WriterStatus status_ = WriterStatus::unknown;
    std::thread finisher_;
};

class FakeRecording final : public Recording {
public:
    explicit FakeRecording(FakeMediaToolkit& toolkit) : toolkit_(toolkit) {}

    std::size_t trackCount() const override {
        return toolkit_.exporting.trackCount.value_or(toolkit_.trackCount);
    }

    MediaTime duration() const override { return toolkit_.exporting.duration; }

    bool isWhole() const noexcept override { return toolkit_.exporting.isWhole; }

    std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes, const std::string& title,
                                    OutputFile& staging, const ExportProgress& progress,
                                    const std::stop_token& stop) override {
        toolkit_.exportedGains = volumes;
        toolkit_.exportedTitle = title;
        staging.writeAt(0, {});
        if (toolkit_.exporting.duringExport) {
            toolkit_.exporting.duringExport();
        }
        throwIfSet(toolkit_.exporting.exportError);
        if (stop.stop_requested()) {
            throw std::system_error(std::make_error_code(std::errc::operation_canceled));
        }
        if (progress) {
            progress(1);
        }
        return toolkit_.exporting.isMadeAhead
                   ? toolkit_.fileSystem().createUnnamed({}, FileAudience::asUserPrefers)
                   : nullptr;
    }

    int channelsOf(std::size_t track) const override {
        return track == 0 && trackCount() == 2 ? 2 : 1;
    }

    void copyTrack(std::size_t track, const TrackTitle& title, OutputFile& staging,
                   const ExportProgress& progress, const std::stop_token& stop) override {
        toolkit_.copiedTracks.emplace_back(track, title.title + title.suffix);
        staging.writeAt(0, {});
        if (toolkit_.exporting.duringCopy) {
            toolkit_.exporting.duringCopy();
        }
        if (toolkit_.exporting.failingTrack == track) {
            throw std::runtime_error("the disk is full");
        }
        if (stop.stop_requested()) {
            throw std::system_error(std::make_error_code(std::errc::operation_canceled));
        }
        if (progress) {
            progress(0);
        }
    }

private:
    FakeMediaToolkit& toolkit_;
};

} // namespace

FakeMediaToolkit::FakeMediaToolkit(CallLog& log, MemoryFileSystem& fileSystem)
    : log_(log), fileSystem_(fileSystem) {
    fileSystem_.createError =
        std::make_exception_ptr(std::logic_error("the recorder creates no file itself"));
    fileSystem_.openError =
        std::make_exception_ptr(std::logic_error("the recorder reads no file itself"));
}

std::unique_ptr<RecordingWriter>
FakeMediaToolkit::makeWriter(const std::filesystem::path& location,
                             FragmentIntervals fragmentIntervals,
                             FragmentWrittenCallback onFragmentWritten) {
    log_.add("makeWriter " + location.string());
    throwIfSet(writing.creationError);
    fileSystem_.put(location);
    intervals = fragmentIntervals;
    fragmentWritten = std::move(onFragmentWritten);
    return std::make_unique<FakeWriter>(*this, location);
}

std::unique_ptr<Recording> FakeMediaToolkit::openRecording(const std::filesystem::path& location) {
    log_.add("openRecording " + location.string());
    throwIfSet(exporting.openError);
    return std::make_unique<FakeRecording>(*this);
}

} // namespace vantoro::testing
