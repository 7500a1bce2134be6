// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_item.h"

#include <utility>

#include <QtCore/QMetaObject>

namespace vantoro::desktop {

namespace {

const BusObject itemObject{.path = "/StatusNotifierItem",
                           .interface = "org.kde.StatusNotifierItem"};

} // namespace

StatusNotifierItem::StatusNotifierItem(const std::string& busAddress, const std::string& busName,
                                       StatusItemTraits traits)
    : clicked_(std::move(traits.clicked)),
      bus_(busAddress),
      watcher_(bus_, statusNotifierWatcher, [this] { registerWithWatcher(); }) {
    object_.identifier = std::move(traits.identifier);
    object_.description = traits.toolTip;
    object_.toolTip = std::move(traits.toolTip);
    // Not within the bus's callback: a click may destroy the item.
    object_.clicked = [this](const std::string& token) {
        QMetaObject::invokeMethod(
            &events_, [clicked = clicked_, token] { clicked(token); }, Qt::QueuedConnection);
    };
    pause_.setSingleShot(true);
    pause_.setTimerType(Qt::PreciseTimer); // coarse timers may be early
    QObject::connect(&pause_, &QTimer::timeout, &events_, [this] { signalChanges(); });
    if (bus_.exportObject(itemObject, statusNotifierTable(), &object_)) {
        bus_.requestName(busName, [this, busName](std::optional<bool> isOurs) {
            // A path in place of a name registers an object of the calling connection.
            registeredName_ = isOurs.value_or(false) ? busName : itemObject.path;
            registerWithWatcher();
        });
    }
}

void StatusNotifierItem::setImage(const StatusImage& image, const std::string& description) {
    if (image != object_.image) {
        object_.image = image;
        imageChanged_ = true;
    }
    if (description != object_.description) {
        object_.description = description;
        descriptionChanged_ = true;
    }
    signalChanges();
}

void StatusNotifierItem::registerWithWatcher() {
    if (isWatched() && !registeredName_.empty()) {
        bus_.call({.service = statusNotifierWatcher,
                   .path = "/StatusNotifierWatcher",
                   .interface = statusNotifierWatcher,
                   .member = "RegisterStatusNotifierItem"},
                  {registeredName_}, [](BusMessage& /*reply*/) {});
    }
}

void StatusNotifierItem::signalChanges() {
    if (pause_.isActive() || !(imageChanged_ || descriptionChanged_)) {
        return;
    }
    if (!isWatched()) { // a watcher reads everything when it appears
        imageChanged_ = false;
        descriptionChanged_ = false;
        return;
    }
    if (bus_.isBehind()) { // a signal would only fill the queue
        pause_.start(std::chrono::seconds(1));
        return;
    }
    pause_.start(signalDistance);
    if (std::exchange(descriptionChanged_, false)) {
        imageChanged_ = true; // panels read the description together with the picture
        bus_.sendSignal(itemObject, "NewTitle");
    }
    if (std::exchange(imageChanged_, false)) {
        bus_.sendSignal(itemObject, "NewIcon");
    }
}

} // namespace vantoro::desktop
