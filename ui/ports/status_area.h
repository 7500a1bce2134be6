// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QtCore/QList>
#include <QtGui/QImage>

namespace vantoro {

/// One picture in several sizes; the desktop picks one.
using StatusImage = QList<QImage>;

/// The fixed properties of an item.
struct StatusItemTraits {
    std::string identifier; ///< stays the same between runs, for the desktop to remember
    std::string toolTip;
    /// Some desktops need the token to bring a window to the front; empty if there is none.
    std::function<void(const std::string& activationToken)> clicked;
};

/// A small picture, shown while this exists; no `clicked` after destruction. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// `description` is for screen readers. Only changes reach the desktop, at most 15 a second.
    virtual void setImage(const StatusImage& image, const std::string& description) = 0;
};

/// The desktop's status area. Main thread; never waits for the desktop.
class StatusArea {
public:
    virtual ~StatusArea() = default;

    /// Shows the item once the desktop has a status area. The item must not outlive the area. Calls
    /// `clicked` from the event loop, never within a call.
    virtual std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) = 0;

    /// Whether items are visible; nothing until the desktop answers, which it may never do.
    virtual std::optional<bool> isAvailable() const = 0;

    /// `changed` is called by the event loop when `isAvailable` changes.
    virtual void setAvailabilityChanged(std::function<void()> changed) = 0;
};

} // namespace vantoro
