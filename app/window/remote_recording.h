// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QtCore/QObject>

#include "control/recording_view_model.h"

namespace vantoro {

/// Starts and stops recordings for the desktop's menu. Shows the window, with the reason, if that
/// fails. Main thread.
class RemoteRecording final : public QObject {
public:
    using ShowWindow = std::function<void(const std::string& activationToken)>;

    /// `model` must outlive this.
    RemoteRecording(RecordingViewModel& model, ShowWindow showWindow);

    /// Does nothing while a recording is starting, running or being saved.
    void start(const std::string& activationToken);
    /// Does nothing unless a recording is starting or running.
    void stop(const std::string& activationToken);

private:
    void stateChanged();

    RecordingViewModel& model_;
    ShowWindow showWindow_;
    std::optional<std::string> token_; ///< set during a recording that was started here
};

} // namespace vantoro
