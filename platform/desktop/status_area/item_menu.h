// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_connection.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

/// A row as panels see it, or the line above a group.
struct MenuNode {
    std::int32_t id = 0; ///< follows from the command, so that a late click means what was clicked
    bool isSeparator = false;
    std::string label;
    bool isEnabled = true;

    friend bool operator==(const MenuNode&, const MenuNode&) = default;
};

std::vector<MenuNode> menuNodes(const StatusMenu& menu);

/// The menu of a status item on its connection (com.canonical.dbusmenu). Main thread.
class ItemMenu {
public:
    static constexpr const char* path = "/MenuBar";
    static constexpr std::int32_t root = 0; ///< the menu's own ID

    /// The bus calls `chosen`, with the ID of a row that is enabled. The bus must outlive this.
    ItemMenu(BusConnection& bus, std::function<void(StatusAreaCommand)> chosen);
    ItemMenu(const ItemMenu&) = delete;
    ItemMenu& operator=(const ItemMenu&) = delete;
    ~ItemMenu() = default;

    /// Tells panels only of a change.
    void set(const StatusMenu& menu);

    const std::vector<MenuNode>& nodes() const { return nodes_; }

    /// Null if there is no such row.
    const MenuNode* find(std::int32_t id) const;

    std::uint32_t revision() const { return revision_; }

    /// False if there is no such row.
    bool happened(std::int32_t id, const std::string& event);

private:
    BusConnection& bus_;
    std::function<void(StatusAreaCommand)> chosen_;
    std::vector<MenuNode> nodes_;
    std::uint32_t revision_ = 1;
};

} // namespace vantoro::desktop
