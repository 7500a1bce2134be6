// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/salvage_task.h"

#include <utility>

namespace vantoro {

SalvageTask::SalvageTask(Scheduler& scheduler, std::shared_ptr<Recorder> recorder,
                         TrackNamesSource trackNames,
                         std::function<void(const SalvageResult&)> onEnded)
    : scheduler_(scheduler),
      recorder_(std::move(recorder)),
      trackNames_(std::move(trackNames)),
      onEnded_(std::move(onEnded)) {}

SalvageTask::~SalvageTask() {
    cancel();
}

void SalvageTask::start(std::filesystem::path folder) {
    cancel();
    isSuspended_ = false;
    if (running_) {
        next_ = std::move(folder);
    } else {
        begin(folder);
    }
}

void SalvageTask::cancel() {
    next_.reset();
    stop_.request_stop();
}

void SalvageTask::suspend() {
    isSuspended_ = isSuspended_ || next_ || (running_ && !stop_.stop_requested());
    cancel();
}

void SalvageTask::resume(std::filesystem::path folder) {
    if (isSuspended_) {
        start(std::move(folder));
    }
}

void SalvageTask::begin(const std::filesystem::path& folder) {
    running_ = true;
    stop_ = std::stop_source();
    runTask(
        scheduler_, QPointer(this),
        [recorder = recorder_, folder, names = trackNames_(), stop = stop_.get_token()] {
            return recorder->recoverIncompleteRecordings(folder, names, stop);
        },
        &SalvageTask::finish);
}

void SalvageTask::finish(const Answer<SalvageResult>& answer) {
    running_ = false;
    const bool cancelled = stop_.stop_requested();
    if (const auto folder = std::exchange(next_, std::nullopt)) {
        begin(*folder);
    }
    if (!cancelled) {
        onEnded_(answer.value_or(SalvageResult()));
    }
}

} // namespace vantoro
