// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/menu_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

#include "platform/desktop/status_area/item_menu.h"

namespace vantoro::desktop {

namespace {

constexpr std::int32_t root = ItemMenu::root;
constexpr std::uint32_t protocolVersion = 3;

ItemMenu& menuOf(void* argument) {
    return *static_cast<ItemMenu*>(argument);
}

/// A label without access keys.
std::string escaped(const std::string& label) {
    std::string text;
    for (const char letter : label) {
        text += letter == '_' ? "__" : std::string(1, letter);
    }
    return text;
}

BusOptions allProperties(const MenuNode* node) {
    if (node == nullptr) {
        return {{"children-display", "submenu"}};
    }
    if (node->isSeparator) {
        return {{"type", "separator"}};
    }
    return {{"label", escaped(node->label)}, {"enabled", node->isEnabled}};
}

/// Those that were asked for; no names ask for all.
BusOptions chosenProperties(const MenuNode* node, const std::set<std::string>& names) {
    auto properties = allProperties(node);
    std::erase_if(properties, [&](const auto& property) {
        return !names.empty() && !names.contains(property.first);
    });
    return properties;
}

std::set<std::string> readNames(sd_bus_message* call) {
    const auto names = BusMessage(call).readTexts().value_or(BusTexts());
    return {names.begin(), names.end()};
}

std::vector<std::int32_t> readNumbers(sd_bus_message* call) {
    const void* numbers = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(call, 'i', &numbers, &size) <= 0) {
        return {};
    }
    const auto* const first = static_cast<const std::int32_t*>(numbers);
    return {first, first + (size / sizeof(std::int32_t))};
}

int appendNumbers(sd_bus_message* reply, const std::vector<std::int32_t>& numbers) {
    return sd_bus_message_append_array(reply, 'i', numbers.data(),
                                       numbers.size() * sizeof(std::int32_t));
}

/// Destroys the reply unless it is sent.
class MenuReply {
public:
    explicit MenuReply(sd_bus_message* call) { sd_bus_message_new_method_return(call, &message_); }

    MenuReply(const MenuReply&) = delete;
    MenuReply& operator=(const MenuReply&) = delete;

    ~MenuReply() { sd_bus_message_unref(message_); }

    sd_bus_message* get() const { return message_; }

    bool open(char type, const char* contents) const {
        return message_ != nullptr && sd_bus_message_open_container(message_, type, contents) >= 0;
    }

    bool close() const { return sd_bus_message_close_container(message_) >= 0; }

    int send(bool isComplete) const {
        return isComplete && message_ != nullptr ? sd_bus_send(nullptr, message_, nullptr) : -EIO;
    }

private:
    sd_bus_message* message_ = nullptr;
};

bool appendLeaf(const MenuReply& reply, const MenuNode& node, const std::set<std::string>& names) {
    return append(reply.get(), {node.id, chosenProperties(&node, names)}) && reply.open('a', "v") &&
           reply.close();
}

bool appendRoot(const MenuReply& reply, const ItemMenu& menu, bool withRows,
                const std::set<std::string>& names) {
    bool appended =
        append(reply.get(), {root, chosenProperties(nullptr, names)}) && reply.open('a', "v");
    for (const auto& node : menu.nodes()) {
        appended = appended && (!withRows ||
                                (reply.open('v', "(ia{sv}av)") && reply.open('r', "ia{sv}av") &&
                                 appendLeaf(reply, node, names) && reply.close() && reply.close()));
    }
    return appended && reply.close();
}

int unknown(sd_bus_error* error) {
    return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "There is no such row.");
}

int getLayout(sd_bus_message* call, void* argument, sd_bus_error* error) {
    const auto& menu = menuOf(argument);
    std::int32_t parent = root;
    std::int32_t depth = 0;
    if (const int read = sd_bus_message_read(call, "ii", &parent, &depth); read < 0) {
        return read;
    }
    const auto names = readNames(call);
    const auto* const node = menu.find(parent);
    if (parent != root && node == nullptr) {
        return unknown(error);
    }
    const MenuReply reply(call);
    const bool begun = reply.get() != nullptr && append(reply.get(), {menu.revision()}) &&
                       reply.open('r', "ia{sv}av");
    const bool filled = begun && (node == nullptr ? appendRoot(reply, menu, depth != 0, names)
                                                  : appendLeaf(reply, *node, names));
    return reply.send(filled && reply.close());
}

int getGroupProperties(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    const auto& menu = menuOf(argument);
    const auto ids = readNumbers(call);
    const auto names = readNames(call);
    const MenuReply reply(call);
    bool appended = reply.open('a', "(ia{sv})");
    const auto add = [&](std::int32_t id, const MenuNode* node) {
        const bool isWanted = ids.empty() || std::ranges::find(ids, id) != ids.end();
        appended = appended &&
                   (!isWanted ||
                    (reply.open('r', "ia{sv}") &&
                     append(reply.get(), {id, chosenProperties(node, names)}) && reply.close()));
    };
    add(root, nullptr);
    for (const auto& node : menu.nodes()) {
        add(node.id, &node);
    }
    return reply.send(appended && reply.close());
}

int getProperty(sd_bus_message* call, void* argument, sd_bus_error* error) {
    std::int32_t id = root;
    const char* name = nullptr;
    if (const int read = sd_bus_message_read(call, "is", &id, &name); read < 0) {
        return read;
    }
    const auto* const node = menuOf(argument).find(id);
    const auto found = chosenProperties(node, {name});
    if ((id != root && node == nullptr) || found.empty()) {
        return unknown(error);
    }
    const MenuReply reply(call);
    return reply.send(reply.get() != nullptr && appendVariant(reply.get(), found.front().second));
}

int hearEvent(sd_bus_message* call, void* argument, sd_bus_error* error) {
    std::int32_t id = root;
    const char* what = nullptr;
    if (const int read = sd_bus_message_read(call, "is", &id, &what); read < 0) {
        return read;
    }
    return menuOf(argument).happened(id, what) ? sd_bus_reply_method_return(call, nullptr)
                                               : unknown(error);
}

int hearEventGroup(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    std::vector<std::int32_t> missing;
    int read = sd_bus_message_enter_container(call, 'a', "(isvu)");
    while (read > 0 && (read = sd_bus_message_enter_container(call, 'r', "isvu")) > 0) {
        std::int32_t id = root;
        const char* what = nullptr;
        read = sd_bus_message_read(call, "is", &id, &what);
        if (read > 0 && !menuOf(argument).happened(id, what)) {
            missing.push_back(id);
        }
        read = read < 0 ? read : sd_bus_message_skip(call, "vu");
        read = read < 0 ? read : sd_bus_message_exit_container(call);
    }
    const MenuReply reply(call);
    return read < 0 ? read : reply.send(appendNumbers(reply.get(), missing) >= 0);
}

/// The menu is always up to date.
int aboutToShow(sd_bus_message* call, void* /*argument*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, "b", 0);
}

int aboutToShowGroup(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
    auto missing = readNumbers(call);
    std::erase_if(missing, [&](std::int32_t id) {
        return id == root || menuOf(argument).find(id) != nullptr;
    });
    const MenuReply reply(call);
    return reply.send(appendNumbers(reply.get(), {}) >= 0 &&
                      appendNumbers(reply.get(), missing) >= 0);
}

template <const char* const& text>
int constantText(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                 const char* /*property*/, sd_bus_message* reply, void* /*argument*/,
                 sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "s", text);
}

constexpr const char* const leftToRight = "ltr";
constexpr const char* const normal = "normal";

int menuVersion(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                const char* /*property*/, sd_bus_message* reply, void* /*argument*/,
                sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "u", protocolVersion);
}

int noTexts(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
            const char* /*property*/, sd_bus_message* reply, void* /*argument*/,
            sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "as", 0);
}

constexpr auto menuAnybody = SD_BUS_VTABLE_UNPRIVILEGED; // as for the item itself
constexpr auto menuConstant = SD_BUS_VTABLE_PROPERTY_CONST;

const sd_bus_vtable menuMembers[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Version", "u", menuVersion, 0, menuConstant),
    SD_BUS_PROPERTY("TextDirection", "s", constantText<leftToRight>, 0, menuConstant),
    SD_BUS_PROPERTY("Status", "s", constantText<normal>, 0, menuConstant),
    SD_BUS_PROPERTY("IconThemePath", "as", noTexts, 0, menuConstant),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, menuAnybody),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", getGroupProperties, menuAnybody),
    SD_BUS_METHOD("GetProperty", "is", "v", getProperty, menuAnybody),
    SD_BUS_METHOD("Event", "isvu", "", hearEvent, menuAnybody),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", hearEventGroup, menuAnybody),
    SD_BUS_METHOD("AboutToShow", "i", "b", aboutToShow, menuAnybody),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", aboutToShowGroup, menuAnybody),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

} // namespace

const sd_bus_vtable* menuCalls() {
    return menuMembers;
}

} // namespace vantoro::desktop
