// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <vector>

#include <QtCore/QObject>

#include "control/recording_view_model.h"

namespace vantoro {

/// Saves what is being recorded before something that would end it. Main thread.
class SavingFirst final : public QObject {
public:
    /// `saved`: nothing is left to be saved. Otherwise it could not be, as the user is told by the
    /// view model.
    using Done = std::function<void(bool saved)>;

    /// `model` outlives it.
    explicit SavingFirst(RecordingViewModel& model);

    /// Stops a recording that runs, or is about to. `done` is called at once where there is none,
    /// else by the event loop once it has come to its end; not after this object's.
    void request(Done done);

    /// Whether somebody waits.
    bool isUnderWay() const { return !waiting_.empty(); }

private:
    void goOn();

    RecordingViewModel& model_;
    std::vector<Done> waiting_;
};

} // namespace vantoro
