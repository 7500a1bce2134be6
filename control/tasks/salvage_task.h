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

/// The salvage of interrupted recordings, one at a time. Main thread.
///
/// The recorder takes a moment to heed that a salvage is cancelled. The salvage that follows waits
/// for that: the file would be locked for it.
class SalvageTask final : public QObject {
public:
    /// `onEnded` is told of what each salvage made, be it nothing, unless it was cancelled.
    SalvageTask(Scheduler& scheduler, std::shared_ptr<Recorder> recorder,
                std::function<void(const SalvageResult&)> onEnded);
    SalvageTask(const SalvageTask&) = delete;
    SalvageTask& operator=(const SalvageTask&) = delete;
    /// Cancels.
    ~SalvageTask() override;

    /// Salvages what is in the folder, in place of all that was asked for before.
    void start(std::filesystem::path folder);

    /// What this salvage still makes is not told to anybody.
    void cancel();

    /// As `cancel`, until `resume`: something else needs the machine now.
    void suspend();

    /// Salvages what is in the folder where `suspend` has cut a salvage short and none was started
    /// since.
    void resume(std::filesystem::path folder);

private:
    void begin(const std::filesystem::path& folder);
    void finish(const Answer<SalvageResult>& answer);

    Scheduler& scheduler_;
    std::shared_ptr<Recorder> recorder_;
    std::function<void(const SalvageResult&)> onEnded_;
    bool running_ = false;
    bool isSuspended_ = false;
    std::stop_source stop_;                     // of the salvage that runs, or ran last
    std::optional<std::filesystem::path> next_; // the folder to turn to when that one has ended
};

} // namespace vantoro
