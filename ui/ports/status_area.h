// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QtCore/QList>
#include <QtGui/QImage>

namespace vantoro {

/// One picture in several sizes, from which the desktop takes the one that fits.
using StatusImage = QList<QImage>;

/// What an item is from its beginning to its end.
struct StatusItemTraits {
    /// By this name the desktop remembers the item's place from one start of the program to the
    /// next.
    std::string identifier;
    std::string toolTip;
    /// The user's click. With the token the desktop lets us bring a window to the front; it is
    /// empty where the desktop gives none.
    std::function<void(const std::string& activationToken)> clicked;
};

/// A small picture in the desktop's status area, for as long as it lives: its function is not
/// called afterwards. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// `description` is what is read aloud to those who do not see the picture. May be called as
    /// often as one likes: the desktop is told only of what differs from what was set before, and
    /// at most 15 times a second.
    virtual void setImage(const StatusImage& image, const std::string& description) = 0;
};

/// The desktop's status area. Main thread, which is never kept waiting for the desktop.
class StatusArea {
public:
    virtual ~StatusArea() = default;

    /// The item is shown when the desktop has a status area, or comes to have one. It must not live
    /// longer than the area. A click is told of by the event loop, not from within a call.
    virtual std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) = 0;

    /// Whether items are seen; nothing while the desktop has not said yet, which one that hangs
    /// never does.
    virtual std::optional<bool> isAvailable() const = 0;

    /// Called by the event loop when `isAvailable` has changed, until the area is destroyed.
    virtual void setAvailabilityChanged(std::function<void()> changed) = 0;
};

} // namespace vantoro
