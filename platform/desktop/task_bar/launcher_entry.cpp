// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/task_bar/launcher_entry.h"

namespace vantoro::desktop {

namespace {

const std::string desktopEntry = "application://com.vantoro.app.desktop";
const BusObject launcherObject{.path = "/com/vantoro/app/launcher",
                               .interface = "com.canonical.Unity.LauncherEntry"};

} // namespace

void LauncherEntry::setProgress(std::optional<double> fraction) {
    if (fraction == fraction_) {
        return;
    }
    fraction_ = fraction;
    const bool isFirst = !bus_;
    if (isFirst) {
        bus_ = std::make_unique<BusConnection>(busAddress_);
    }
    if (fraction_ && !isFirst && bus_->isBehind()) { // would only fill the queue
        return;
    }
    bus_->sendSignal(launcherObject, "Update",
                     {desktopEntry, BusOptions{{"progress", fraction_.value_or(0)},
                                               {"progress-visible", fraction_.has_value()}}});
}

} // namespace vantoro::desktop
