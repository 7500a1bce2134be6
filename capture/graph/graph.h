// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "capture/graph/mixer_setting.h"

namespace vantoro::capture {

using ObjectId = std::uint32_t;
using Properties = std::map<std::string, std::string, std::less<>>;

/// The property that marks everything that we start ourselves: its sound is our own.
inline constexpr const char* ownSoundProperty = "vantoro.own";

/// One object, and no other at any time: the server gives an id to the next object as soon as its
/// object is gone, and a serial never again.
struct Identity {
    ObjectId id = 0;
    std::uint64_t serial = 0; ///< 0: not told

    friend auto operator<=>(const Identity&, const Identity&) = default;
};

struct Node {
    std::string mediaClass;
    std::string name;
    std::string description;
    std::uint64_t serial = 0;
    std::string linkGroup;
    std::string targetObject; ///< what it asks to be connected to: a name or a serial
    std::string processId;
    std::optional<ObjectId> client;
    bool autoconnect = false;
    bool markedAsOwn = false;
    bool isOfDevice = false; ///< and not made by a program
    MixerSetting mixer;      ///< of microphones only
    /// Of playback streams, what the application gives; its ports are what the server makes of it
    /// for the output. Empty until it is told.
    std::vector<std::string> channels;

    friend bool operator==(const Node&, const Node&) = default;
};

enum class PortDirection : std::uint8_t { input, output };

struct Port {
    ObjectId node = 0;
    PortDirection direction = PortDirection::input;
    std::string channel;
    std::uint64_t serial = 0;
    bool isMonitor = false; ///< gives what is played to its node
};

struct Link {
    ObjectId outputNode = 0;
    ObjectId inputNode = 0;
    ObjectId outputPort = 0;
    ObjectId inputPort = 0;
};

struct Client {
    std::string processId; ///< of native clients
    std::uint64_t serial = 0;
};

/// What we know of the sound server's objects, by their ids.
struct Graph {
    std::map<ObjectId, Node> nodes;
    std::map<ObjectId, Port> ports; ///< each of one channel of sound
    /// Ports of what has no channels to take apart: coded sound, and pictures.
    std::set<ObjectId> undividedPorts;
    std::map<ObjectId, Link> links;
    std::map<ObjectId, Client> clients;
    std::map<ObjectId, std::string> targets; ///< where the user moved a stream to
    std::string defaultOutput;
    std::string defaultMicrophone;
    /// What the two are told by, where it is a session manager that tells them.
    std::optional<ObjectId> defaultsOfSessionManager;
    std::string serverVersion; ///< empty until the server has told
    bool mayExecute = false;   ///< what we are permitted on the server's core
    bool canMakeLinks = false;
};

/// A node's ports of one direction, in the order in which they were made.
std::vector<Identity> portsOf(const Graph& graph, ObjectId node, PortDirection direction);

/// 0 where the properties do not tell it.
std::uint64_t serialOf(const Properties& properties);

/// Takes from an object's properties what a `Node` holds; what they do not name stays as it is.
void readProperties(Node& node, const Properties& properties);

} // namespace vantoro::capture
