// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_item.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include <QtCore/QMetaObject>

namespace vantoro::desktop {

namespace {

const BusObject itemObject{.path = "/StatusNotifierItem",
                           .interface = "org.kde.StatusNotifierItem"};

// Flag and replies of the bus's RequestName method.
constexpr std::uint32_t doNotQueue = 4;
constexpr std::uint32_t nowOwner = 1;

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
    signalTimer_.setSingleShot(true);
    signalTimer_.setTimerType(Qt::PreciseTimer); // coarse timers may be early
    QObject::connect(&signalTimer_, &QTimer::timeout, &events_, [this] { sendSignals(); });
    if (bus_.exportObject(itemObject, statusNotifierTable(), &object_)) {
        requestBusName(busName);
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
    scheduleSignals();
}

void StatusNotifierItem::requestBusName(const std::string& busName) {
    bus_.call(busMethod("RequestName"), {busName, doNotQueue}, [this, busName](BusMessage& reply) {
        // A path in place of a name registers an object of the calling connection.
        const bool ours = !reply.isError() && reply.readNumber() == nowOwner;
        registeredName_ = ours ? busName : itemObject.path;
        registerWithWatcher();
    });
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

void StatusNotifierItem::scheduleSignals() {
    const bool changed = imageChanged_ || descriptionChanged_;
    if (!changed || signalTimer_.isActive()) {
        return;
    }
    const auto wait = pace_.waitAt(SignalPace::Moment::clock::now());
    if (wait.count() == 0) {
        sendSignals();
    } else {
        signalTimer_.start(wait);
    }
}

void StatusNotifierItem::sendSignals() {
    if (!isWatched()) { // a watcher reads everything when it appears
        imageChanged_ = false;
        descriptionChanged_ = false;
        return;
    }
    if (bus_.isBehind()) { // a signal would only fill the queue
        signalTimer_.start(std::chrono::seconds(1));
        return;
    }
    pace_.signalledAt(SignalPace::Moment::clock::now());
    if (std::exchange(descriptionChanged_, false)) {
        imageChanged_ = true; // panels read the description together with the picture
        bus_.sendSignal(itemObject, "NewTitle");
    }
    if (std::exchange(imageChanged_, false)) {
        bus_.sendSignal(itemObject, "NewIcon");
    }
}

} // namespace vantoro::desktop
