// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/item_menu.h"

#include <algorithm>
#include <utility>

#include "platform/desktop/status_area/menu_calls.h"

namespace vantoro::desktop {

namespace {

constexpr std::int32_t firstRow = 1;
constexpr std::int32_t firstSeparator = 100;

const BusObject menuObject{.path = ItemMenu::path, .interface = "com.canonical.dbusmenu"};

} // namespace

std::vector<MenuNode> menuNodes(const StatusMenu& menu) {
    std::vector<MenuNode> nodes;
    for (const auto& row : menu) {
        const auto command = static_cast<std::int32_t>(row.command);
        if (row.startsGroup && !nodes.empty()) {
            nodes.push_back({.id = firstSeparator + command, .isSeparator = true, .label = {}});
        }
        nodes.push_back({.id = firstRow + command, .label = row.label, .isEnabled = row.isEnabled});
    }
    return nodes;
}

ItemMenu::ItemMenu(BusConnection& bus, std::function<void(StatusAreaCommand)> chosen)
    : bus_(bus), chosen_(std::move(chosen)) {
    bus_.exportObject(menuObject, menuCalls(), this);
}

void ItemMenu::set(const StatusMenu& menu) {
    auto nodes = menuNodes(menu);
    if (nodes == nodes_) {
        return;
    }
    nodes_ = std::move(nodes);
    ++revision_;
    bus_.sendSignal(menuObject, "LayoutUpdated", {revision_, root});
}

const MenuNode* ItemMenu::find(std::int32_t id) const {
    const auto found = std::ranges::find(nodes_, id, &MenuNode::id);
    return found == nodes_.end() ? nullptr : &*found;
}

bool ItemMenu::happened(std::int32_t id, const std::string& event) {
    const auto* const node = find(id);
    if (node != nullptr && node->isEnabled && !node->isSeparator && event == "clicked") {
        chosen_(static_cast<StatusAreaCommand>(id - firstRow));
    }
    return node != nullptr || id == root;
}

} // namespace vantoro::desktop
