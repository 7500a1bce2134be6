// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QList>
#include <QtGui/QImage>

namespace vantoro {

/// One picture in several sizes; the desktop picks one.
using StatusImage = QList<QImage>;

/// What a row of an item's menu does.
enum class StatusAreaCommand : std::uint8_t { showWindow, startRecording, stopRecording, quit };

/// A row of an item's menu; each command has at most one.
struct StatusMenuRow {
    StatusAreaCommand command = StatusAreaCommand::showWindow;
    std::string label;
    bool isEnabled = true;
    bool startsGroup = false; ///< set apart from the rows above

    friend bool operator==(const StatusMenuRow&, const StatusMenuRow&) = default;
};

using StatusMenu = std::vector<StatusMenuRow>;

/// The fixed properties of an item.
struct StatusItemTraits {
    std::string identifier; ///< stays the same between runs, for the desktop to remember
    std::string toolTip;
    /// Some desktops need the token to bring a window to the front; empty if there is none.
    std::function<void(const std::string& activationToken)> clicked;
    /// Of the menu's rows; called like `clicked`.
    std::function<void(StatusAreaCommand command, const std::string& activationToken)> chosen = {};
};

/// A small picture, shown while this exists; no `clicked` or `chosen` after destruction. Main
/// thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// `description` is for screen readers. Only changes reach the desktop, at most 15 a second.
    virtual void setImage(const StatusImage& image, const std::string& description) = 0;
    /// A line below the tool tip; empty for none.
    virtual void setToolTipDetail(const std::string& detail) = 0;
    /// For panels that ask for one.
    virtual void setMenu(const StatusMenu& menu) = 0;
};

/// The desktop's status area. Main thread; never waits for the desktop.
class StatusArea {
public:
    virtual ~StatusArea() = default;

    /// Shows the item once the desktop has a status area. The item must not outlive the area. Calls
    /// `clicked` and `chosen` from the event loop, never within a call.
    virtual std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) = 0;

    /// Whether items are visible; nothing until the desktop answers, which it may never do.
    virtual std::optional<bool> isAvailable() const = 0;

    /// `changed` is called by the event loop when `isAvailable` changes.
    virtual void setAvailabilityChanged(std::function<void()> changed) = 0;
};

} // namespace vantoro
