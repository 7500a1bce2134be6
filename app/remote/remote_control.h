// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include "control/recording_view_model.h"
#include "platform/desktop/remote/control_service.h"

namespace vantoro {

/// The words of the bus interface for the states and conditions.
std::string controlWord(RecordingState::Case state);
std::string controlWord(SourceCondition condition);

/// Lets other programs start, stop and follow the recordings of a view model over the bus. Main
/// thread.
class RemoteControl final : public QObject, public desktop::ControlledProgram {
public:
    /// Receives what may bring a window to the front; may be empty.
    using Action = std::function<void(const std::string& activationToken)>;

    /// `model` must outlive this. `start` and `stop` do what is not done for a request by itself.
    RemoteControl(RecordingViewModel& model, desktop::ControlService& service, Action start,
                  Action stop);
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;
    ~RemoteControl() override;

    desktop::ControlStatus status() const override;
    void start(const std::string& activationToken, desktop::StartAnswer answered) override;
    void stop(const std::string& activationToken, desktop::StopAnswer answered) override;
    std::expected<std::uint32_t, desktop::ControlFailure> mark(const std::string& text) override;

private:
    RecordingState::Case state() const { return model_.values().state.which(); }

    void noteState();
    void answerStarts();
    void answerStops();
    void failStops();
    void schedulePublishing();

    RecordingViewModel& model_;
    QPointer<desktop::ControlService> service_; // may end before this
    Action start_;
    Action stop_;
    std::vector<desktop::StartAnswer> starts_;
    std::vector<desktop::StopAnswer> stops_;
    std::int64_t startedAt_ = 0;
    std::filesystem::path folder_; // of the current or last recording
    bool hasBegun_ = false;        // so a failure may still be salvaged
    bool isSalvageOver_ = false;   // after a failure
    bool isPublishingScheduled_ = false;
};

} // namespace vantoro
