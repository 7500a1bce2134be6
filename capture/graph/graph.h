// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vantoro::capture {

using ObjectId = std::uint32_t;
using Properties = std::map<std::string, std::string, std::less<>>;

/// Set on the nodes of everything that we start ourselves: their sound is our own.
inline constexpr const char* ownSoundProperty = "vantoro.own";

/// Identifies one object for good: the server reuses ids at once, serials never.
struct Identity {
    ObjectId id = 0;
    std::uint64_t serial = 0; ///< 0: unknown

    friend auto operator<=>(const Identity&, const Identity&) = default;
};

/// A device's state in the user's mixer. A recording of it is silent if `isSilent`.
struct MixerSetting {
    bool isMuted = false;
    bool isVolumeZero = false; ///< on every channel

    bool isSilent() const noexcept { return isMuted || isVolumeZero; }

    friend bool operator==(const MixerSetting&, const MixerSetting&) = default;
};

struct Node {
    std::string mediaClass;
    std::string name;
    std::string description;
    std::uint64_t serial = 0;
    std::string linkGroup;
    std::string targetObject; ///< requested target: a name or a serial
    std::string processId;
    std::optional<ObjectId> client;
    bool autoconnect = false;
    bool markedAsOwn = false;
    bool isOfDevice = false; ///< a hardware device's, not a program's
    MixerSetting mixer;      ///< microphones only
    /// Playback streams: the application's own channels, not the output's. Empty until known.
    std::vector<std::string> channels;

    friend bool operator==(const Node&, const Node&) = default;
};

enum class PortDirection : std::uint8_t { input, output };

struct Port {
    ObjectId node = 0;
    PortDirection direction = PortDirection::input;
    std::string channel;
    std::uint64_t serial = 0;
    bool isMonitor = false; ///< carries what is played to its node
};

struct Link {
    ObjectId outputNode = 0;
    ObjectId inputNode = 0;
    ObjectId outputPort = 0;
    ObjectId inputPort = 0;
};

struct Client {
    std::string processId; ///< native clients only
    std::uint64_t serial = 0;
};

/// Our copy of the sound server's objects, by id.
struct Graph {
    std::map<ObjectId, Node> nodes;
    std::map<ObjectId, Port> ports; ///< one audio channel each
    /// Ports without separate channels: encoded sound, and video.
    std::set<ObjectId> undividedPorts;
    std::map<ObjectId, Link> links;
    std::map<ObjectId, Client> clients;
    std::map<ObjectId, std::string> targets; ///< where the user moved each stream
    std::string defaultOutput;
    std::string defaultMicrophone;
    /// The metadata object with the two defaults, if a session manager provides it.
    std::optional<ObjectId> defaultsOfSessionManager;
    std::string serverVersion; ///< empty until known
    bool mayExecute = false;   ///< our permission on the server's core
    bool canMakeLinks = false;
};

/// A node's ports in one direction, in creation order.
std::vector<Identity> portsOf(const Graph& graph, ObjectId node, PortDirection direction);

/// 0 if unknown.
std::uint64_t serialOf(const Properties& properties);

/// Updates the fields of `node` that the properties name; the others stay.
void readProperties(Node& node, const Properties& properties);

} // namespace vantoro::capture
