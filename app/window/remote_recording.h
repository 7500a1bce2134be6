// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QtCore/QObject>

#include "control/recording_view_model.h"

namespace vantoro {

/// Starts and stops recordings for somebody who does not look at the window, as the desktop's menu
/// does, and shows the window when one could not be made: the reason stands there. Main thread.
class RemoteRecording final : public QObject {
public:
    using ShowWindow = std::function<void(const std::string& activationToken)>;

    /// `model` outlives it.
    RemoteRecording(RecordingViewModel& model, ShowWindow showWindow);

    /// Nothing happens while a recording is being prepared, made or saved.
    void start(const std::string& activationToken);
    /// Nothing happens where nothing is being recorded, or about to be.
    void stop(const std::string& activationToken);

private:
    void stateChanged();

    RecordingViewModel& model_;
    ShowWindow showWindow_;
    std::optional<std::string> token_; ///< while a recording is under way that was asked for here
};

} // namespace vantoro
