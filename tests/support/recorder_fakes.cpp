// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/recorder_fakes.h"

#include <algorithm>
#include <array>
#include <system_error>
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

    bool start(MediaTime time) override {
        toolkit_.log().add("start " + std::to_string(time.inUnitsOf(48000)));
        status_ = toolkit_.writing.startSucceeds ? WriterStatus::writing : WriterStatus::failed;
        return toolkit_.writing.startSucceeds;
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

    std::unique_ptr<OutputFile> mix(const std::vector<float>& volumes, OutputFile& staging,
                                    const ExportProgress& progress,
                                    const std::stop_token& stop) override {
        toolkit_.exportedGains = volumes;
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

private:
    FakeMediaToolkit& toolkit_;
};

/// An empty path: without a name.
class FakeOutputFile final : public OutputFile {
public:
    FakeOutputFile(CallLog& log, FakeFileSystem& fileSystem, std::filesystem::path path)
        : log_(log), fileSystem_(fileSystem), path_(std::move(path)) {}

    void writeAt(std::uint64_t /*offset*/, std::span<const std::byte> /*bytes*/) override {
        log_.add("write " + path_.filename().string());
    }

    void truncate(std::uint64_t /*size*/) override {}

    void sync() override {}

    void ensureReachable() override {}

    void close() override {}

    void takeName(const std::filesystem::path& path) override {
        log_.add(path_.empty()
                     ? "name " + path.filename().string()
                     : "move " + path_.filename().string() + " " + path.filename().string());
        throwIfSet(fileSystem_.moveError);
        if (!fileSystem_.entries.insert(path).second) {
            throw std::system_error(std::make_error_code(std::errc::file_exists));
        }
        fileSystem_.entries.erase(std::exchange(path_, path));
    }

    void discard() noexcept override { fileSystem_.entries.erase(path_); }

private:
    CallLog& log_;
    FakeFileSystem& fileSystem_;
    std::filesystem::path path_;
};

class FakeStream final : public CaptureStream {
public:
    explicit FakeStream(FakeCaptureService& service) : service_(service) { ++service_.liveStreams; }

    FakeStream(const FakeStream&) = delete;
    FakeStream& operator=(const FakeStream&) = delete;

    ~FakeStream() override {
        if (service_.whenStreamGoes) {
            service_.whenStreamGoes();
        }
        --service_.liveStreams;
    }

    void startCapture() override {
        service_.log().add("startCapture");
        if (service_.duringStart) {
            service_.duringStart();
        }
        throwIfSet(service_.startError);
    }

    void stopCapture() override {
        service_.log().add("stopCapture");
        throwIfSet(service_.stopError);
    }

private:
    FakeCaptureService& service_;
};

} // namespace

void CallLog::add(std::string call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
}

std::vector<std::string> CallLog::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

bool CallLog::contains(const std::string& call) const {
    const auto all = calls();
    return std::ranges::find(all, call) != all.end();
}

std::vector<std::string> CallLog::startingWith(const std::string& prefix) const {
    auto found = calls();
    std::erase_if(found, [&](const std::string& call) { return !call.starts_with(prefix); });
    return found;
}

void throwIfSet(const std::exception_ptr& error) {
    if (error) {
        std::rethrow_exception(error);
    }
}

bool FakeCaptureAccess::isGranted() {
    log_.add("capture access");
    return std::exchange(isAllowed, isAllowed || isAllowedNextTime);
}

AuthorizationStatus FakeMicrophoneAccess::status() {
    log_.add("microphone status");
    return current;
}

bool FakeMicrophoneAccess::request() {
    log_.add("microphone request");
    return grantedOnRequest;
}

void FakeFileSystem::leave(const std::filesystem::path& path,
                           std::optional<std::filesystem::file_time_type> modified) {
    entries.insert(path);
    const std::scoped_lock lock(listingMutex_);
    listing_.push_back({path, modified});
}

void FakeFileSystem::createFolders(const std::filesystem::path& folder) {
    log_.add("createFolders " + folder.string());
    throwIfSet(createFoldersError);
}

void FakeFileSystem::remove(const std::filesystem::path& path) {
    log_.add("remove " + path.filename().string());
    if (const auto error = removeErrors.find(path); error != removeErrors.end()) {
        throwIfSet(error->second);
    }
    if (entries.erase(path) == 0) {
        throw std::filesystem::filesystem_error(
            "remove", path, std::make_error_code(std::errc::no_such_file_or_directory));
    }
    if (afterRemove) {
        afterRemove(path);
    }
}

void FakeFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
    log_.add("move " + from.filename().string() + " " + to.filename().string());
    throwIfSet(moveError);
    if (!entries.insert(to).second) {
        throw std::system_error(std::make_error_code(std::errc::file_exists));
    }
    entries.erase(from);
}

void FakeFileSystem::syncFolder(const std::filesystem::path& folder) {
    log_.add("syncFolder " + folder.string());
    throwIfSet(syncFolderError);
}

std::unique_ptr<OutputFile> FakeFileSystem::create(const std::filesystem::path& /*path*/,
                                                   FileAudience /*audience*/) {
    throw std::logic_error("the recorder creates no file itself");
}

std::unique_ptr<OutputFile> FakeFileSystem::claim(const std::filesystem::path& path,
                                                  FileAudience /*audience*/) {
    log_.add("claim " + path.filename().string());
    throwIfSet(claimError);
    if (locked.contains(path)) {
        return nullptr;
    }
    entries.insert(path);
    if (afterClaim) {
        afterClaim();
    }
    return std::make_unique<FakeOutputFile>(log_, *this, path);
}

std::unique_ptr<OutputFile> FakeFileSystem::createUnnamed(const std::filesystem::path& /*folder*/,
                                                          FileAudience /*audience*/) {
    return std::make_unique<FakeOutputFile>(log_, *this, std::filesystem::path());
}

std::uint64_t FakeFileSystem::availableSpace(const std::filesystem::path& folder) const {
    log_.add("availableSpace " + folder.string());
    throwIfSet(availableSpaceError);
    return available;
}

std::unique_ptr<InputFile> FakeFileSystem::open(const std::filesystem::path& /*path*/) {
    throw std::logic_error("the recorder reads no file itself");
}

std::vector<FolderEntry> FakeFileSystem::list(const std::filesystem::path& /*folder*/) {
    throwIfSet(listError);
    const std::scoped_lock lock(listingMutex_);
    return listing_;
}

std::unique_ptr<FileLock> FakeFileSystem::lock(const std::filesystem::path& path) {
    class Lock final : public FileLock {
    public:
        Lock(CallLog& log, std::string name) : log_(log), name_(std::move(name)) {
            log_.add("lock " + name_);
        }

        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        ~Lock() override { log_.add("unlock " + name_); }

    private:
        CallLog& log_;
        std::string name_;
    };

    return locked.contains(path) ? nullptr : std::make_unique<Lock>(log_, path.filename().string());
}

std::vector<std::filesystem::path> FakeFileSystem::temporaryFiles() const {
    std::vector<std::filesystem::path> found;
    std::ranges::copy_if(entries, std::back_inserter(found),
                         [](const auto& path) { return path.string().ends_with(".partial.mov"); });
    return found;
}

std::unique_ptr<RecordingWriter>
FakeMediaToolkit::makeWriter(const std::filesystem::path& location,
                             FragmentIntervals fragmentIntervals,
                             FragmentWrittenCallback onFragmentWritten) {
    log_.add("makeWriter " + location.string());
    throwIfSet(writing.creationError);
    fileSystem_.entries.insert(location);
    intervals = fragmentIntervals;
    fragmentWritten = std::move(onFragmentWritten);
    return std::make_unique<FakeWriter>(*this, location);
}

std::unique_ptr<Recording> FakeMediaToolkit::openRecording(const std::filesystem::path& location) {
    log_.add("openRecording " + location.string());
    throwIfSet(exporting.openError);
    return std::make_unique<FakeRecording>(*this);
}

std::shared_ptr<CaptureStream> FakeCaptureService::makeStream(const CaptureRequest& captureRequest,
                                                              SerialQueue& deliveryQueue,
                                                              CaptureStreamReceiver& receiver) {
    log_.add("makeStream " + deliveryQueue.label());
    throwIfSet(makeStreamError);
    request = captureRequest;
    queue = &deliveryQueue;
    receiver_ = &receiver;
    return std::make_shared<FakeStream>(*this);
}

void FakeCaptureService::deliver(const SampleBuffer& buffer, AudioLevelSource source) {
    queue->sync([&] { receiver_->didOutputSampleBuffer(buffer, source); });
}

void FakeCaptureService::deliverLater(const SampleBuffer& buffer, AudioLevelSource source) {
    queue->async([this, buffer, source] { receiver_->didOutputSampleBuffer(buffer, source); });
}

void FakeCaptureService::loseSound(AudioLevelSource source, double seconds) {
    queue->sync([&] { receiver_->didLoseSound(source, seconds); });
}

void FakeCaptureService::muteMicrophone(bool isMuted) {
    receiver_->obstacleDidChange(AudioLevelSource::microphone,
                                 isMuted ? SourceCondition::muted : SourceCondition::delivering);
    queue->sync([] {});
}

void FakeCaptureService::stopByItself(std::exception_ptr error) {
    receiver_->streamDidStop(std::move(error));
    queue->sync([] {});
}

SampleBuffer bufferAt(std::int64_t frame, std::uint32_t channels, std::size_t frames, float value) {
    static const auto samplesOf = [](float fill) {
        static std::mutex mutex;
        static std::map<float, std::array<float, 4096>> all;
        const std::lock_guard lock(mutex);
        auto [entry, isNew] = all.try_emplace(fill);
        if (isNew) {
            entry->second.fill(fill);
        }
        return std::span<const float>(entry->second);
    };
    return {.dataIsReady = true,
            .frameCount = static_cast<std::int64_t>(frames),
            .presentationTime = {frame, 48000},
            .format = AudioStreamDescription{.sampleRate = 48000, .channelsPerFrame = channels},
            .samples = samplesOf(value).first(channels * frames)};
}

} // namespace vantoro::testing
