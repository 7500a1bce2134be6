// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/doctor_command.h"

#include <chrono>
#include <cstddef>
#include <future>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "app/ending/ending.h"
#include "engine/recorder/salvage.h"
#include "platform/desktop/bus/bus_addresses.h"
#include "platform/desktop/permission/microphone_access.h"
#include "platform/ffmpeg/loaded_toolkit.h"
#include "platform/pipewire/sound_server.h"
#include "platform/posix/posix_file_system.h"

namespace vantoro {

namespace {

constexpr std::chrono::seconds serviceLimit(2);
constexpr std::size_t shownFaults = 3;
constexpr std::chrono::days faultsOfTheLast(7);
/// Longer than the checks' own limit, since a thread may have to wait for a processor.
constexpr std::chrono::seconds threadLimit(3);

/// Asks on a thread of its own, because a disk may take minutes to answer. The destructor joins the
/// thread.
template <class Value>
class Awaited {
public:
    template <class Question>
    explicit Awaited(Question question)
        : task_(std::move(question)), answer_(task_.get_future()), thread_([this] { task_(); }) {}

    /// The answer, or nothing if it is late. Rethrows what the question threw. Call once.
    std::optional<Value> get() {
        return hasCome(deadline_) ? std::optional(answer_.get()) : std::nullopt;
    }

    /// Whether the thread is still running.
    bool isUnanswered() const { return answer_.valid() && !hasCome(Clock::now()); }

private:
    using Clock = std::chrono::steady_clock;

    bool hasCome(Clock::time_point deadline) const {
        return answer_.wait_until(deadline) == std::future_status::ready;
    }

    Clock::time_point deadline_ = Clock::now() + threadLimit;
    std::packaged_task<Value()> task_;
    std::future<Value> answer_;
    std::jthread thread_;
};

FolderCheck askDisk(const std::filesystem::path& folder) {
    posix::PosixFileSystem fileSystem;
    return checkFolder(fileSystem, folder);
}

std::size_t askForInterrupted(const std::filesystem::path& folder) {
    posix::PosixFileSystem fileSystem;
    ffmpeg::LoadedToolkit mediaToolkit(fileSystem);
    return recordingsToRecover(mediaToolkit, fileSystem, folder);
}

/// Leaves out a silent bus, and everything on it.
desktop::DesktopSurvey askDesktop(const desktop::SilentBuses& silent) {
    auto found = desktop::surveyDesktop(desktop::standardBusAddresses(), serviceLimit);
    if (silent.session) {
        found.sessionBus = found.statusArea = found.portal = desktop::Presence::unknown;
    }
    if (silent.system) {
        found.sleepDelay = desktop::SleepDelay::unknown;
    }
    return found;
}

/// Leaves the answer out if the session bus does not answer.
std::optional<desktop::MicrophoneFacts> askForMicrophone(desktop::Presence sessionBus) {
    return sessionBus == desktop::Presence::unknown
               ? std::nullopt
               : std::optional(desktop::microphoneFacts(desktop::standardBusAddresses().session));
}

} // namespace

int examine(const std::filesystem::path& recordingFolder, const desktop::SilentBuses& silent,
            const std::function<int(const DoctorFindings& findings)>& report) {
    Awaited<std::optional<capture::SoundSurvey>> sound(
        [] { return pipewire::SoundServer(serviceLimit).survey(); });
    Awaited<FolderCheck> folder([recordingFolder] { return askDisk(recordingFolder); });
    Awaited<std::size_t> interrupted(
        [recordingFolder] { return askForInterrupted(recordingFolder); });
    Awaited<std::vector<journal::Fault>> faults([] {
        return journal::recentFaults(shownFaults,
                                     std::chrono::system_clock::now() - faultsOfTheLast);
    });
    const auto desktop = askDesktop(silent);
    Awaited<std::optional<desktop::MicrophoneFacts>> microphone(
        [bus = desktop.sessionBus] { return askForMicrophone(bus); });
    const int status = report({.soundLibraryVersion = pipewire::soundLibraryVersion(),
                               .sound = sound.get().value_or(std::nullopt),
                               .desktop = desktop,
                               .microphone = microphone.get().value_or(std::nullopt),
                               .recordingFolder = recordingFolder,
                               .folder = folder.get(),
                               .interruptedRecordings = interrupted.get(),
                               .faults = faults.get().value_or(std::vector<journal::Fault>())});
    if (sound.isUnanswered() || microphone.isUnanswered() || folder.isUnanswered() ||
        interrupted.isUnanswered() || faults.isUnanswered()) {
        Ending::leaveProcess(status, {}); // there is no other way to end a thread that hangs
    }
    return status;
}

} // namespace vantoro
