// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <vector>

#include <QtCore/QObject>

#include "control/recording_view_model.h"

namespace vantoro {

/// Saves the current recording before something that would end it. Main thread.
class SavingFirst final : public QObject {
public:
    /// `saved`: nothing is left to save. False if saving failed, which the view model has reported.
    using Done = std::function<void(bool saved)>;

    /// `model` must outlive this.
    explicit SavingFirst(RecordingViewModel& model);

    /// Stops a recording that is starting or running. Calls `done` at once if there is none, else
    /// from the event loop when it has ended; never after this object is destroyed.
    void request(Done done);

    /// Whether a request is pending.
    bool isUnderWay() const { return !waiting_.empty(); }

private:
    void goOn();

    RecordingViewModel& model_;
    std::vector<Done> waiting_;
};

} // namespace vantoro
