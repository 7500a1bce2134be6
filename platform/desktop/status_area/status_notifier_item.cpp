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
constexpr std::uint32_t nowOurs = 1;

} // namespace

StatusNotifierItem::StatusNotifierItem(const std::string& busAddress, const std::string& busName,
                                       StatusItemTraits traits)
    : clicked_(std::move(traits.clicked)),
      bus_(busAddress),
      watcher_(bus_, statusNotifierWatcher, [this] { introduce(); }) {
    object_.identifier = std::move(traits.identifier);
    object_.description = traits.toolTip;
    object_.toolTip = std::move(traits.toolTip);
    // Not within the bus's callback: a click may destroy the item.
    object_.clicked = [this](const std::string& token) {
        QMetaObject::invokeMethod(
            &events_, [clicked = clicked_, token] { clicked(token); }, Qt::QueuedConnection);
    };
    untilTold_.setSingleShot(true);
    untilTold_.setTimerType(Qt::PreciseTimer); // coarse timers may be early
    QObject::connect(&untilTold_, &QTimer::timeout, &events_, [this] { tell(); });
    if (bus_.offer(itemObject, statusNotifierTable(), &object_)) {
        takeBusName(busName);
    }
}

void StatusNotifierItem::setImage(const StatusImage& image, const std::string& description) {
    if (image != object_.image) {
        object_.image = image;
        imageIsNews_ = true;
    }
    if (description != object_.description) {
        object_.description = description;
        descriptionIsNews_ = true;
    }
    tellSoon();
}

void StatusNotifierItem::takeBusName(const std::string& busName) {
    bus_.call(busMethod("RequestName"), {busName, doNotQueue}, [this, busName](BusMessage& reply) {
        // A path in place of a name registers an object of the calling connection.
        const bool ours = !reply.isError() && reply.readNumber() == nowOurs;
        knownAs_ = ours ? busName : itemObject.path;
        introduce();
    });
}

void StatusNotifierItem::introduce() {
    if (isWatched() && !knownAs_.empty()) {
        bus_.call({.service = statusNotifierWatcher,
                   .path = "/StatusNotifierWatcher",
                   .interface = statusNotifierWatcher,
                   .member = "RegisterStatusNotifierItem"},
                  {knownAs_}, [](BusMessage& /*reply*/) {});
    }
}

void StatusNotifierItem::tellSoon() {
    const bool news = imageIsNews_ || descriptionIsNews_;
    if (!news || untilTold_.isActive()) {
        return;
    }
    const auto wait = pace_.waitAt(SignalPace::Moment::clock::now());
    if (wait.count() == 0) {
        tell();
    } else {
        untilTold_.start(wait);
    }
}

void StatusNotifierItem::tell() {
    if (!isWatched()) { // a watcher reads everything when it appears
        imageIsNews_ = false;
        descriptionIsNews_ = false;
        return;
    }
    if (bus_.isBehind()) { // a signal would only fill the queue
        untilTold_.start(std::chrono::seconds(1));
        return;
    }
    pace_.toldAt(SignalPace::Moment::clock::now());
    if (std::exchange(descriptionIsNews_, false)) {
        imageIsNews_ = true; // panels read the description together with the picture
        bus_.tell(itemObject, "NewTitle");
    }
    if (std::exchange(imageIsNews_, false)) {
        bus_.tell(itemObject, "NewIcon");
    }
}

} // namespace vantoro::desktop
