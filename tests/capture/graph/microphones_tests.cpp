// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/microphones.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Microphones : public ::testing::Test {
protected:
    static constexpr ObjectId virtualMicrophone = 12;
    static constexpr ObjectId microphone = 13;
    static constexpr ObjectId interface = 14;

    Microphones() {
        graph.nodes[11] = node("Audio/Sink", "speakers");
        graph.nodes[virtualMicrophone] = node("Audio/Source/Virtual", "virtual");
        graph.nodes[microphone] = node("Audio/Source", "mic");
        graph.nodes[microphone].description = "Desk Microphone";
        graph.ports[300] = {microphone, PortDirection::output, "FL"};
        graph.ports[301] = {microphone, PortDirection::output, "FR"};
    }

    static Node node(const char* mediaClass, const char* name) {
        Node node;
        node.mediaClass = mediaClass;
        node.name = name;
        node.serial = 1000;
        return node;
    }

    /// With one input per channel.
    void addInterface(const std::vector<std::string>& channels) {
        graph.nodes[interface] = node("Audio/Source", "interface");
        ObjectId port = 400;
        for (const std::string& channel : channels) {
            graph.ports[port++] = {interface, PortDirection::output, channel};
        }
    }

    std::vector<ObjectId> portsOf(const Microphone& chosen) const {
        std::vector<ObjectId> ids;
        for (const Identity& port : capture::portsOf(graph, chosen)) {
            ids.push_back(port.id);
        }
        return ids;
    }

    std::vector<ObjectId> portsOf(const std::string& identifier) const {
        const auto chosen = findMicrophone(graph, identifier);
        return chosen ? portsOf(*chosen) : std::vector<ObjectId>();
    }

    Graph graph;
};

TEST_F(Microphones, areNamedByTheirDescription) {
    graph.nodes[interface] = node("Audio/Duplex", "interface");
    EXPECT_THAT(microphones(graph), ElementsAre(AudioInputDevice{"virtual", "virtual"},
                                                AudioInputDevice{"mic", "Desk Microphone"},
                                                AudioInputDevice{"interface", "interface"}));
    EXPECT_EQ(findMicrophone(graph, "mic"), (Microphone{{microphone, 1000}, ""}));
    EXPECT_EQ(findMicrophone(graph, "speakers"), std::nullopt);
    graph.nodes[microphone].name = "";
    EXPECT_EQ(findMicrophone(graph, ""), std::nullopt);
}

TEST_F(Microphones, withMoreThanTwoInputsHaveEachOfThemInTheList) {
    addInterface({"AUX0", "AUX1", "AUX2"});
    EXPECT_THAT(microphones(graph),
                ElementsAre(AudioInputDevice{"virtual", "virtual"},
                            AudioInputDevice{"mic", "Desk Microphone"},
                            AudioInputDevice{"interface", "interface"},
                            AudioInputDevice{"interface:AUX0", "interface: AUX0"},
                            AudioInputDevice{"interface:AUX1", "interface: AUX1"},
                            AudioInputDevice{"interface:AUX2", "interface: AUX2"}));
    EXPECT_THAT(portsOf("interface"), ElementsAre(400, 401, 402));
    EXPECT_THAT(portsOf("interface:AUX0"), ElementsAre(400));
    EXPECT_THAT(portsOf("interface:AUX2"), ElementsAre(402));
    for (const char* unknown : {"interface:AUX3", "interface:", "interfaceAUX2", "interface:aux2",
                                "mic:FL", "other:AUX2", ":AUX2"}) {
        EXPECT_EQ(findMicrophone(graph, unknown), std::nullopt) << unknown;
    }
}

TEST_F(Microphones, withAColonInTheirNamesAreFoundAsTheyAre) {
    addInterface({"AUX0", "AUX1", "AUX2"});
    graph.nodes[15] = node("Audio/Source", "interface:AUX9");
    graph.nodes[interface].name = "usb:interface";
    EXPECT_EQ(findMicrophone(graph, "interface:AUX9"), (Microphone{{15, 1000}, ""}));
    EXPECT_THAT(portsOf("usb:interface:AUX1"), ElementsAre(401));
}

TEST_F(Microphones, withUnnamedInputsAreSelectedAsAWhole) {
    addInterface({"", "", "", "MONO", "MONO"});
    EXPECT_EQ(microphones(graph).size(), 4U);
    EXPECT_THAT(portsOf("interface:MONO"), ElementsAre(403, 404));
    EXPECT_THAT(portsOf("interface"), ElementsAre(400, 401, 402, 403, 404));
}

TEST_F(Microphones, givesNothingOnceTheInputIsGone) {
    addInterface({"AUX0", "AUX1", "AUX2"});
    const auto chosen = findMicrophone(graph, "interface:AUX2");
    ASSERT_TRUE(chosen);
    graph.ports.erase(402);
    EXPECT_THAT(portsOf(*chosen), IsEmpty());
    EXPECT_NE(deviceOf(graph, *chosen), nullptr);
    graph.nodes[interface].serial = 2000;
    EXPECT_EQ(deviceOf(graph, *chosen), nullptr);
}

TEST_F(Microphones, areHeardAtTheirCapturePortsAndNotAtTheirMonitors) {
    struct Case {
        const char* mediaClass;
        bool firstIsMonitor;
        bool secondIsMonitor;
        std::vector<ObjectId> heard;
    };

    const std::vector<Case> cases{
        {"Audio/Source", false, false, {300, 301}},
        {"Audio/Source", true, false, {301}},
        {"Audio/Source", true, true, {}},
        {"Audio/Duplex", false, true, {300}},
        // Virtual microphones output only what programs play into them.
        {"Audio/Duplex", true, true, {300, 301}},
        {"Audio/Source/Virtual", true, true, {300, 301}},
        {"Audio/Source/Virtual", false, true, {300}},
        {"Audio/Sink", true, true, {}},
    };
    for (const Case& now : cases) {
        graph.nodes[microphone].mediaClass = now.mediaClass;
        graph.ports[300].isMonitor = now.firstIsMonitor;
        graph.ports[301].isMonitor = now.secondIsMonitor;
        EXPECT_EQ(portsOf(Microphone{{microphone, 1000}, ""}), now.heard) << now.mediaClass;
    }
}

} // namespace
} // namespace vantoro::testing
