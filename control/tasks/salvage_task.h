// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include <QtCore/QObject>

#include "control/ports/scheduler.h"
#include "control/tasks/task.h"
#include "engine/recorder/recorder.h"

namespace vantoro {

/// Salvages interrupted recordings, one folder at a time: a cancelled salvage holds its file locks
/// for a moment more, and the next one waits for that. Main thread.
class SalvageTask final : public QObject {
public:
    /// Gives the names for the sources' own files, if wanted, at the start of each salvage.
    using TrackNamesSource = std::function<std::optional<TrackNames>()>;

    /// `onEnded` receives the result of each salvage that was not cancelled, even an empty one.
    SalvageTask(Scheduler& scheduler, std::shared_ptr<Recorder> recorder,
                TrackNamesSource trackNames, std::function<void(const SalvageResult&)> onEnded);
    SalvageTask(const SalvageTask&) = delete;
    SalvageTask& operator=(const SalvageTask&) = delete;
    ~SalvageTask() override;

    /// Replaces all earlier requests.
    void start(std::filesystem::path folder);
    /// Discards the result; so does destruction.
    void cancel();
    /// Cancels, until `resume`, because a recording needs the machine.
    void suspend();
    /// Salvages the folder if `suspend` interrupted a salvage and none was started since.
    void resume(std::filesystem::path folder);

private:
    void begin(const std::filesystem::path& folder);
    void finish(const Answer<SalvageResult>& answer);

    Scheduler& scheduler_;
    std::shared_ptr<Recorder> recorder_;
    TrackNamesSource trackNames_;
    std::function<void(const SalvageResult&)> onEnded_;
    bool running_ = false;
    bool isSuspended_ = false;
    std::stop_source stop_;                     // of the current or last salvage
    std::optional<std::filesystem::path> next_; // the folder to salvage after the current one
};

} // namespace vantoro
