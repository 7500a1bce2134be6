// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_item.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <QtCore/QMetaObject>
#include <QtCore/QtEndian>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

StatusNotifierObject& objectOf(void* argument) {
    return *static_cast<StatusNotifierObject*>(argument);
}

/// ARGB pixels in network byte order.
std::vector<std::uint8_t> bytesOf(const QImage& image) {
    const auto pixels = image.convertToFormat(QImage::Format_ARGB32);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(pixels.sizeInBytes()));
    qToBigEndian<std::uint32_t>(pixels.constBits(), pixels.sizeInBytes() / 4, bytes.data());
    return bytes;
}

bool appendPixels(sd_bus_message* message, const QImage& image) {
    const auto bytes = bytesOf(image);
    return sd_bus_message_open_container(message, 'r', "iiay") >= 0 &&
           sd_bus_message_append(message, "ii", image.width(), image.height()) >= 0 &&
           sd_bus_message_append_array(message, 'y', bytes.data(), bytes.size()) >= 0 &&
           sd_bus_message_close_container(message) >= 0;
}

int appendImage(sd_bus_message* message, const StatusImage& image) {
    bool appended = sd_bus_message_open_container(message, 'a', "(iiay)") >= 0;
    for (const auto& size : image) {
        appended = appended && appendPixels(message, size);
    }
    return appended ? sd_bus_message_close_container(message) : -EIO;
}

template <std::string StatusNotifierObject::* field>
int text(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
         sd_bus_message* reply, void* argument, sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "s", (objectOf(argument).*field).c_str());
}

template <char type>
int zero(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
         sd_bus_message* reply, void* /*argument*/, sd_bus_error* /*error*/) {
    const int nothing = 0;
    return sd_bus_message_append_basic(reply, type, &nothing);
}

int pixels(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
           const char* /*property*/, sd_bus_message* reply, void* argument,
           sd_bus_error* /*error*/) {
    return appendImage(reply, objectOf(argument).image);
}

/// Has no picture, because the panel shows the item's.
int toolTip(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
            const char* /*property*/, sd_bus_message* reply, void* argument,
            sd_bus_error* /*error*/) {
    const bool appended = sd_bus_message_open_container(reply, 'r', "sa(iiay)ss") >= 0 &&
                          sd_bus_message_append(reply, "s", "") >= 0 &&
                          appendImage(reply, {}) >= 0 &&
                          sd_bus_message_append(reply, "ss", objectOf(argument).toolTip.c_str(),
                                                objectOf(argument).toolTipDetail.c_str()) >= 0;
    return appended ? sd_bus_message_close_container(reply) : -EIO;
}

int menuPath(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
             const char* /*property*/, sd_bus_message* reply, void* /*argument*/,
             sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "o", ItemMenu::path);
}

int click(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    auto& object = objectOf(argument);
    object.clicked(std::exchange(object.nextActivationToken, {}));
    return sd_bus_reply_method_return(call, nullptr);
}

int ignore(sd_bus_message* call, void* /*argument*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, nullptr);
}

int takeToken(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    const char* token = nullptr;
    const int read = sd_bus_message_read_basic(call, 's', static_cast<void*>(&token));
    if (read < 0) {
        return read;
    }
    objectOf(argument).nextActivationToken = token;
    return sd_bus_reply_method_return(call, nullptr);
}

using Object = StatusNotifierObject;

// Nothing here is secret or harmful, and checking the caller would block the main thread.
constexpr auto anybody = SD_BUS_VTABLE_UNPRIVILEGED;
constexpr auto constant = SD_BUS_VTABLE_PROPERTY_CONST;

const sd_bus_vtable table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", text<&Object::category>, 0, constant),
    SD_BUS_PROPERTY("Id", "s", text<&Object::identifier>, 0, constant),
    SD_BUS_PROPERTY("Title", "s", text<&Object::description>, 0, 0),
    SD_BUS_PROPERTY("Status", "s", text<&Object::status>, 0, 0),
    SD_BUS_PROPERTY("WindowId", "i", zero<'i'>, 0, constant),
    SD_BUS_PROPERTY("IconThemePath", "s", text<&Object::none>, 0, constant),
    SD_BUS_PROPERTY("IconName", "s", text<&Object::none>, 0, 0),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", pixels, 0, 0),
    SD_BUS_PROPERTY("IconAccessibleDesc", "s", text<&Object::description>, 0, 0),
    SD_BUS_PROPERTY("OverlayIconName", "s", text<&Object::none>, 0, 0),
    SD_BUS_PROPERTY("AttentionIconName", "s", text<&Object::none>, 0, 0),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", toolTip, 0, 0),
    SD_BUS_PROPERTY("ItemIsMenu", "b", zero<'b'>, 0, constant),
    SD_BUS_PROPERTY("Menu", "o", menuPath, 0, constant),
    SD_BUS_METHOD("Activate", "ii", "", click, anybody),
    SD_BUS_METHOD("SecondaryActivate", "ii", "", click, anybody),
    SD_BUS_METHOD("ContextMenu", "ii", "", click, anybody),
    SD_BUS_METHOD("Scroll", "is", "", ignore, anybody),
    SD_BUS_METHOD("ProvideXdgActivationToken", "s", "", takeToken, anybody),
    SD_BUS_SIGNAL("NewTitle", "", 0),
    SD_BUS_SIGNAL("NewIcon", "", 0),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
    SD_BUS_SIGNAL("NewStatus", "s", 0),
    SD_BUS_VTABLE_END,
};

const BusObject itemObject{.path = "/StatusNotifierItem",
                           .interface = "org.kde.StatusNotifierItem"};

} // namespace

StatusNotifierItem::StatusNotifierItem(const std::string& busAddress, StatusItemTraits traits)
    : clicked_(std::move(traits.clicked)),
      bus_(busAddress),
      menu_(bus_,
            [this, chosen = std::move(traits.chosen)](StatusAreaCommand command) {
                // As for a click.
                QMetaObject::invokeMethod(
                    &events_,
                    [chosen, command, token = std::exchange(object_.nextActivationToken, {})] {
                        chosen(command, token);
                    },
                    Qt::QueuedConnection);
            }),
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
    isExported_ = bus_.exportObject(itemObject, table, &object_);
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

void StatusNotifierItem::setToolTipDetail(const std::string& detail) {
    if (detail != object_.toolTipDetail) {
        object_.toolTipDetail = detail;
        toolTipChanged_ = true;
        signalChanges();
    }
}

// By its path, which stands for an object of this connection: GNOME's extension loses items that
// are registered by a bus name.
void StatusNotifierItem::registerWithWatcher() {
    if (isWatched() && isExported_) {
        bus_.call({.service = statusNotifierWatcher,
                   .path = "/StatusNotifierWatcher",
                   .interface = statusNotifierWatcher,
                   .member = "RegisterStatusNotifierItem"},
                  {itemObject.path}, [](BusMessage& /*reply*/) {});
    }
}

void StatusNotifierItem::signalChanges() {
    if (pause_.isActive() || !(imageChanged_ || descriptionChanged_ || toolTipChanged_)) {
        return;
    }
    if (!isWatched()) { // a watcher reads everything when it appears
        imageChanged_ = false;
        descriptionChanged_ = false;
        toolTipChanged_ = false;
        return;
    }
    if (bus_.isBehind()) { // a signal would only fill the queue
        pause_.start(std::chrono::seconds(1));
        return;
    }
    pause_.start(signalDistance);
    signalEachChange();
}

void StatusNotifierItem::signalEachChange() {
    if (std::exchange(toolTipChanged_, false)) {
        bus_.sendSignal(itemObject, "NewToolTip");
    }
    if (std::exchange(descriptionChanged_, false)) {
        imageChanged_ = true; // panels read the description together with the picture
        bus_.sendSignal(itemObject, "NewTitle");
    }
    if (std::exchange(imageChanged_, false)) {
        bus_.sendSignal(itemObject, "NewIcon");
    }
}

} // namespace vantoro::desktop
