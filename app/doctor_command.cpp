// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/doctor_command.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

#include "engine/salvage.h"
#include "platform/desktop/bus/answering_bus.h"
#include "platform/desktop/permission/microphone_access.h"
#include "platform/ffmpeg/loaded_toolkit.h"
#include "platform/pipewire/graph_query.h"
#include "platform/posix/posix_file_system.h"

namespace vantoro {

namespace {

constexpr std::chrono::seconds serviceLimit(2);
/// For what limits itself to the former, and may have to wait for a processor besides.
constexpr std::chrono::seconds threadLimit(3);

/// An answer that comes from a thread of its own, so that nobody has to wait for it: a disk may
/// take minutes.
template <class Value>
class Awaited {
public:
    template <class Question>
    explicit Awaited(Question question) {
        const auto promise = std::make_shared<std::promise<Value>>();
        future_ = promise->get_future();
        std::thread([promise, question = std::move(question)] {
            try {
                promise->set_value(question());
            } catch (...) {
                promise->set_exception(std::current_exception());
            }
        }).detach();
    }

    /// Nothing where it has not come by then. Throws what the question did.
    std::optional<Value> get() {
        if (future_.wait_until(deadline_) != std::future_status::ready) {
            return std::nullopt;
        }
        return future_.get();
    }

private:
    std::chrono::steady_clock::time_point deadline_ =
        std::chrono::steady_clock::now() + threadLimit;
    std::future<Value> future_;
};

template <class Question>
Awaited(Question) -> Awaited<std::invoke_result_t<Question>>;

FolderCheck askDisk(const std::filesystem::path& folder) {
    posix::PosixFileSystem fileSystem;
    return checkFolder(fileSystem, folder);
}

std::size_t askForInterrupted(const std::filesystem::path& folder) {
    posix::PosixFileSystem fileSystem;
    ffmpeg::LoadedToolkit mediaToolkit(fileSystem);
    return recordingsToRecover(mediaToolkit, fileSystem, folder);
}

/// Nothing is known of a bus that is silent, nor of what is on it.
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

std::optional<desktop::MicrophoneFacts> askForMicrophone(desktop::Presence sessionBus) {
    if (sessionBus == desktop::Presence::unknown) {
        return std::nullopt;
    }
    const bool hasBus = sessionBus == desktop::Presence::present;
    return Awaited([hasBus] {
               return desktop::microphoneFacts(
                   hasBus ? desktop::answeringSessionBus()
                          : QDBusConnection(QStringLiteral("a bus that there is not")));
           })
        .get();
}

} // namespace

DoctorFindings examine(const std::filesystem::path& recordingFolder,
                       const desktop::SilentBuses& silent) {
    Awaited sound([] { return pipewire::surveySound(serviceLimit); });
    Awaited folder([recordingFolder] { return askDisk(recordingFolder); });
    Awaited interrupted([recordingFolder] { return askForInterrupted(recordingFolder); });
    const auto desktop = askDesktop(silent);
    const auto microphone = askForMicrophone(desktop.sessionBus);
    return {.soundLibraryVersion = pipewire::soundLibraryVersion(),
            .sound = sound.get().value_or(std::nullopt),
            .desktop = desktop,
            .microphone = microphone,
            .recordingFolder = recordingFolder,
            .folder = folder.get(),
            .interruptedRecordings = interrupted.get()};
}

} // namespace vantoro
