// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "engine/recorder/audio_recorder.h"

namespace vantoro::testing {

/// What the fakes were asked, in order; written from any thread.
class CallLog {
public:
    void add(std::string call);
    std::vector<std::string> calls() const;
    bool contains(const std::string& call) const;
    /// The calls that begin with `prefix`.
    std::vector<std::string> startingWith(const std::string& prefix) const;

private:
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
};

/// Throws `error` where one is set.
void throwIfSet(const std::exception_ptr& error);

class FakeCaptureAccess final : public CaptureAccess {
public:
    explicit FakeCaptureAccess(CallLog& log) : log_(log) {}

    bool isAllowed = true;
    bool isAllowedNextTime = false; ///< of two questions the second one's answer

    bool isGranted() override;

private:
    CallLog& log_;
};

class FakeMicrophoneAccess final : public MicrophoneAccess {
public:
    explicit FakeMicrophoneAccess(CallLog& log) : log_(log) {}

    AuthorizationStatus current = AuthorizationStatus::authorized;
    bool grantedOnRequest = false;

    AuthorizationStatus status() override;
    bool request() override;

private:
    CallLog& log_;
};

class FakeClock final : public Clock {
public:
    double uptime = 1000;
    std::tm local = [] {
        std::tm time{};
        time.tm_year = 125;
        time.tm_mon = 2;
        time.tm_mday = 1;
        time.tm_hour = 9;
        time.tm_min = 30;
        time.tm_sec = 15;
        return time;
    }();

    double systemUptime() const override { return uptime; }

    std::tm localTime() const override { return local; }
};

/// Names only: no content is kept.
class FakeFileSystem final : public FileSystem {
public:
    explicit FakeFileSystem(CallLog& log) : log_(log) {}

    std::set<std::filesystem::path> entries;
    std::exception_ptr createFoldersError;
    std::map<std::filesystem::path, std::exception_ptr> removeErrors;
    std::function<void(const std::filesystem::path&)> afterRemove;
    std::function<void()> afterClaim;
    std::exception_ptr claimError;
    std::exception_ptr moveError; ///< of names that files take, too
    std::exception_ptr syncFolderError;
    std::exception_ptr listError;
    std::uint64_t available = std::numeric_limits<std::uint64_t>::max(); ///< bytes, in any folder
    std::exception_ptr availableSpaceError;
    std::set<std::filesystem::path> locked; ///< by somebody else

    /// Puts what a listing, of any folder, names. From any thread, also while one is made.
    void leave(const std::filesystem::path& path,
               std::optional<std::filesystem::file_time_type> modified = std::nullopt);

    void createFolders(const std::filesystem::path& folder) override;

    bool exists(const std::filesystem::path& path) const override { return entries.contains(path); }

    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;
    /// Null where the path is `locked`.
    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override;
    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override;

    std::uint64_t availableSpace(const std::filesystem::path& folder) const override;

    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override;
    std::vector<FolderEntry> list(const std::filesystem::path& folder) override;
    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override;

    /// The temporary recordings that are there.
    std::vector<std::filesystem::path> temporaryFiles() const;

private:
    CallLog& log_;
    std::mutex listingMutex_;
    std::vector<FolderEntry> listing_;
};

/// How the fake writer behaves; set before `start`.
struct WriterBehaviour {
    std::exception_ptr creationError;
    std::set<int> refusedChannelCounts;
    bool startSucceeds = true;
    bool appendSucceeds = true;
    bool ready = true;
    WriterStatus statusAfterFinish = WriterStatus::completed;
    double secondsNotWritten = 0;
    std::optional<std::string> error;
};

/// How reading and exporting behave.
struct ExportBehaviour {
    std::exception_ptr openError;
    std::exception_ptr exportError;
    MediaTime duration{48000, 48000};
    bool isWhole = true;
    std::optional<std::size_t> trackCount; ///< absent: as many as the writer had
    bool isMadeAhead = false;              ///< in a file without a name
    std::function<void()> duringExport;
};

class FakeMediaToolkit final : public MediaToolkit {
public:
    FakeMediaToolkit(CallLog& log, FakeFileSystem& fileSystem)
        : log_(log), fileSystem_(fileSystem) {}

    WriterBehaviour writing;
    ExportBehaviour exporting;
    std::size_t trackCount = 0;              ///< of the last writer
    FragmentIntervals intervals;             ///< of the last writer
    FragmentWrittenCallback fragmentWritten; ///< of the last writer
    std::vector<float> exportedGains;        ///< of the last export, in track order

    std::unique_ptr<RecordingWriter> makeWriter(const std::filesystem::path& location,
                                                FragmentIntervals fragmentIntervals,
                                                FragmentWrittenCallback onFragmentWritten) override;
    std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) override;

    CallLog& log() { return log_; }

    FakeFileSystem& fileSystem() { return fileSystem_; }

private:
    CallLog& log_;
    FakeFileSystem& fileSystem_;
};

/// A capture stream that delivers what a test tells it to.
class FakeCaptureService final : public CaptureService {
public:
    explicit FakeCaptureService(CallLog& log) : log_(log) {}

    std::exception_ptr makeStreamError;
    std::exception_ptr startError;
    std::exception_ptr stopError;
    std::function<void()> duringStart;
    std::function<void()> whenStreamGoes;
    CaptureRequest request; ///< of the last stream
    int liveStreams = 0;

    std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& captureRequest,
                                              SerialQueue& deliveryQueue,
                                              CaptureStreamReceiver& receiver) override;

    /// Returns when the buffer has been dealt with.
    void deliver(const SampleBuffer& buffer, AudioLevelSource source);
    /// Returns at once, as the buffer queues behind what is there.
    void deliverLater(const SampleBuffer& buffer, AudioLevelSource source);
    /// Returns when it has been dealt with.
    void loseSound(AudioLevelSource source, double seconds);
    /// Returns when it has been dealt with.
    void muteMicrophone(bool isMuted);
    /// Returns when the stop has been dealt with.
    void stopByItself(std::exception_ptr error);

    CallLog& log() { return log_; }

    SerialQueue* queue = nullptr; ///< of the last stream

private:
    CallLog& log_;
    CaptureStreamReceiver* receiver_ = nullptr;
};

/// A buffer of float samples, all of one value, at a time in frames of 48 kHz.
SampleBuffer bufferAt(std::int64_t frame, std::uint32_t channels = 2, std::size_t frames = 256,
                      float value = 0.5F);

} // namespace vantoro::testing
